/// @file
/// What stands in the documents' examples for the server and the user.
#pragma once

#include <string>

namespace Documented
{
/// ASCII alone.
inline std::string utf8(const std::wstring& place)
{
    return {place.begin(), place.end()};
}

inline std::wstring endPoint;
inline std::wstring user;
inline std::wstring password;
} // namespace Documented
