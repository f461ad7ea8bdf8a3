#include "Utf8.h"

#include <boost/locale/encoding_utf.hpp>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace utf = boost::locale::utf;

namespace Platform
{
std::string toUtf8(const std::wstring& text)
{
    try {
        return boost::locale::conv::utf_to_utf<char>(text, boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::range_error("malformed wide text");
    }
}

std::wstring fromUtf8(std::string_view utf8)
{
    constexpr utf::code_point replacement = 0xFFFD;
    std::wstring wide;
    wide.reserve(utf8.size());
    for (const auto* next = utf8.begin(); next != utf8.end();) {
        const auto* const start = next;
        auto codePoint = utf::utf_traits<char>::decode(next, utf8.end());
        if (!utf::is_valid_codepoint(codePoint)) {
            // What follows a sequence that is cut short is a character of its own.
            codePoint = replacement;
            next = std::find_if_not(start + 1, utf8.end(), utf::utf_traits<char>::is_trail);
        }
        utf::utf_traits<wchar_t>::encode(codePoint, std::back_inserter(wide));
    }
    return wide;
}

bool isUtf8(std::string_view text)
{
    for (const auto* next = text.begin(); next != text.end();) {
        if (!utf::is_valid_codepoint(utf::utf_traits<char>::decode(next, text.end()))) {
            return false;
        }
    }
    return true;
}
} // namespace Platform
