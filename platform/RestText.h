/// @file
/// The library's wide text as text of the REST SDK, and back.
#pragma once

#include <cpprest/details/basic_types.h>

#include <string>

namespace Platform
{
/// @throws std::range_error if `text` is malformed
utility::string_t toRestText(const std::wstring& text);

/// @throws std::range_error if `text` is malformed
std::wstring fromRestText(const utility::string_t& text);
} // namespace Platform
