#include "Text.h"

#include <windows.h>

#include <stdexcept>

std::wstring toWide(const std::string& utf8)
{
    if (utf8.empty()) {
        return {};
    }
    const auto size = static_cast<int>(utf8.size());
    std::wstring text(utf8.size(), L'\0'); // never longer
    const int length =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), size, text.data(), size);
    if (length == 0) {
        throw std::invalid_argument("a text of the command line is not valid UTF-8");
    }
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string toUtf8(const std::wstring& text)
{
    constexpr std::size_t longest = 3; // bytes of one UTF-16 unit; a pair of them has four
    std::string utf8(text.size() * longest, '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(length));
    return utf8;
}
