/// @file
/// The failures of operations in words.
#pragma once

#include <string>
#include <system_error>

namespace Platform
{
/// The message of `code`, from the thread's ANSI code page. Where its category has none but a placeholder
/// with the number, the library's own, which says what to look after; the placeholder if there is none
/// either.
std::wstring errorText(const std::error_code& code);
} // namespace Platform
