#include "AnsiText.h"

#include "WideText.h"

#include <windows.h>

#include <array>
#include <stdexcept>

// MultiByteToWideChar, WideCharToMultiByte: ERROR_INSUFFICIENT_BUFFER where a text does not fit;
// ERROR_INVALID_PARAMETER for an empty text, which is therefore never passed; ERROR_INVALID_FLAGS and
// ERROR_NO_UNICODE_TRANSLATION only with flags that are not used here. Invalid bytes and characters that the
// code page lacks are replaced.

std::wstring Platform::fromAnsi(std::string_view text)
{
    if (text.empty()) {
        return {};
    }
    const auto convert = [text](wchar_t* buffer, int size) {
        return MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), static_cast<int>(text.size()), buffer,
                                   size);
    };
    std::array<wchar_t, 128> usual; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the call
    if (const int length = convert(usual.data(), static_cast<int>(usual.size())); length > 0) {
        return {usual.data(), static_cast<std::size_t>(length)};
    }
    std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Platform::toAnsi(const std::wstring& text)
{
    if (firstMalformed(text) != text.size()) {
        throw std::range_error("malformed wide text");
    }
    if (text.empty()) {
        return {};
    }
    const auto convert = [&text](char* buffer, int size) {
        return WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), static_cast<int>(text.size()), buffer, size,
                                   nullptr, nullptr);
    };
    std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(narrow.data(), static_cast<int>(narrow.size()));
    return narrow;
}
