/// @file
/// Lines of the class logger as `CapturedLog` gives them.
#pragma once

#include <string>

namespace LogText
{
const std::wstring api = L"VantryIntegrationApi::CVantryApi::";
const std::wstring utils = L"VantryIntegrationApi::Utils::";
const std::wstring mask = L"***************";
const std::wstring failure =
    L"We've got an error during request. See logged status code and message for more details.";

inline std::wstring trace(const std::wstring& text)
{
    return L"TRACE CVantryApi " + text;
}

inline std::wstring info(const std::wstring& text)
{
    return L"INFO CVantryApi " + text;
}

inline std::wstring error(const std::wstring& text)
{
    return L"ERROR CVantryApi " + text;
}

inline std::wstring fatal(const std::wstring& text)
{
    return L"FATAL CVantryApi " + text;
}
} // namespace LogText
