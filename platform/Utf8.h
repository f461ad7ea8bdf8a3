/// @file
/// UTF-8 and wide text, the same on both targets.
#pragma once

#include <string>
#include <string_view>

namespace Platform
{
/// @throws std::range_error if `text` is malformed
std::string toUtf8(const std::wstring& text);

/// Appends `text` if all of its characters are ASCII and none is zero; whether they are.
bool appendAscii(std::string& to, const std::wstring& text);

/// Whatever in `utf8` is no well-formed text becomes U+FFFD.
std::wstring fromUtf8(std::string_view utf8);

/// How many characters of ASCII, without zero, `text` begins with.
std::size_t asciiLength(std::wstring_view text);

/// Whether all of `text` is well-formed.
bool isUtf8(std::string_view text);
} // namespace Platform
