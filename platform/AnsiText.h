/// @file
/// Text in the calling thread's ANSI code page (`CP_THREAD_ACP`; UTF-8 on Linux).
#pragma once

#include <string>
#include <string_view>

namespace Platform
{
/// Wide text of `text`. Bytes that are no text become U+FFFD or what the code page has for it, so that it
/// can be used while an exception is handled: nothing but `std::bad_alloc` leaves it.
std::wstring fromAnsi(std::string_view text);

/// `text` in the code page; characters that it lacks become its default character.
/// @throws std::range_error if `text` is malformed
std::string toAnsi(const std::wstring& text);
} // namespace Platform
