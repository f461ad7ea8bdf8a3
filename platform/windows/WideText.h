/// @file
/// Well-formed UTF-16.
#pragma once

#include <string>

namespace Platform
{
/// Index, not before `from`, of the first surrogate without its partner; the text's size if there is none.
/// `from` must not be the second half of a pair.
std::size_t firstMalformed(const std::wstring& text, std::size_t from = 0);
} // namespace Platform
