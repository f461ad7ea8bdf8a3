#include "AnsiText.h"

#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

namespace utf = boost::locale::utf;

std::wstring Platform::fromAnsi(std::string_view text)
{
    constexpr wchar_t replacement = 0xFFFD;
    std::wstring wide;
    wide.reserve(text.size());
    for (const auto* next = text.begin(); next != text.end();) {
        const auto codePoint = utf::utf_traits<char>::decode(next, text.end());
        wide.push_back(utf::is_valid_codepoint(codePoint) ? static_cast<wchar_t>(codePoint) : replacement);
    }
    return wide;
}

std::string Platform::toAnsi(const std::wstring& text)
{
    try {
        return boost::locale::conv::utf_to_utf<char>(text, boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::range_error("malformed wide text");
    }
}
