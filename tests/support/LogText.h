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
} // namespace LogText
