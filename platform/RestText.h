/// @file
/// The library's wide text as text of the REST SDK, and back. Text of the host is tested, text of the server
/// is read leniently.
#pragma once

#include <cpprest/details/basic_types.h>

#include <string>

namespace Platform
{
/// @throws std::range_error if `text` is malformed
utility::string_t toRestText(const std::wstring& text);

/// @throws std::range_error if `text` is malformed
std::string utf8OfRestText(utility::string_t text);

/// Wide text of what a server sent: whatever in it is no well-formed text becomes U+FFFD.
std::wstring fromRestText(const utility::string_t& text);

/// A server's UTF-8 as text of the REST SDK. Whatever in it is no well-formed text becomes U+FFFD: here on
/// Windows, in `fromRestText` on Linux.
utility::string_t restTextOfUtf8(std::string utf8);

/// `json` for the REST SDK's parser, which takes U+FFFF for the end of the text on Windows.
utility::string_t toParserText(utility::string_t json);
} // namespace Platform
