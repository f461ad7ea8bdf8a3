/// @file
/// What stands in the documents' examples for the server and the user.
#pragma once

#include <string>

namespace Documented
{
inline std::wstring endPoint;
inline std::wstring user;
inline std::wstring password;
} // namespace Documented
