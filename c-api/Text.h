/// @file
/// Text of the interface: UTF-8 that ends with a zero.
#pragma once

#include <string>

namespace CInterface
{
/// What the host gave, as wide text.
/// @throws Refusal if it is null or malformed
std::wstring textOf(const char* given);

/// UTF-8 for the host: a zero in `text`, which would end it, becomes U+FFFD.
std::string forHost(const std::wstring& text);
std::string forHost(std::string utf8);
void appendForHost(std::string& to, const std::wstring& text);

/// The value of a JSON text: of a string without its quotes and escapes, of null nothing. What is no JSON
/// text stays.
std::string plain(const std::wstring& json);
} // namespace CInterface
