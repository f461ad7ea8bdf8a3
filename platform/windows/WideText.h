/// @file
/// Well-formed UTF-16.
#pragma once

#include <string>

namespace Platform
{
/// @throws std::range_error if `text` holds a surrogate without its partner
void requireWellFormed(const std::wstring& text);
} // namespace Platform
