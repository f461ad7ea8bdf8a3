/// @file
/// Bytes in JSON text: each is the code point of its value.
#pragma once

#include <string>
#include <string_view>

namespace sandbox
{
std::string toText(std::string_view bytes);

/// @throws HttpError 400 for a code point beyond U+00FF
std::string toBytes(const std::string& text);
} // namespace sandbox
