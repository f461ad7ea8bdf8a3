#include "Utf8.h"

#include <boost/locale/encoding_utf.hpp>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <type_traits>

namespace utf = boost::locale::utf;

namespace
{
/// The first character that is not ASCII or is zero, or the end. Most text has none, for which there is no
/// need to convert one character after the other.
template <typename Character>
const Character* endOfAscii(const Character* from, const Character* end)
{
    using Unsigned = std::make_unsigned_t<Character>;
    constexpr Unsigned firstOther = 0x80;
    constexpr std::ptrdiff_t block = 32; // looked at together, with the processor's wide registers
    for (; end - from >= block; from += block) {
        Unsigned bits = 0;
        Unsigned zeros = 0;
        for (std::ptrdiff_t i = 0; i < block; ++i) {
            bits |= static_cast<Unsigned>(from[i]);
            zeros |= static_cast<Unsigned>(from[i] == 0);
        }
        if (bits >= firstOther || zeros != 0) {
            break;
        }
    }
    return std::find_if(
        from, end, [](Character next) { return next == 0 || static_cast<Unsigned>(next) >= firstOther; });
}

template <typename Text>
bool isAscii(const Text& text)
{
    const auto* const end = text.data() + text.size();
    return endOfAscii(text.data(), end) == end;
}
} // namespace

namespace Platform
{
std::string toUtf8(const std::wstring& text)
{
    std::string utf8;
    if (appendAscii(utf8, text)) {
        return utf8;
    }
    try {
        return boost::locale::conv::utf_to_utf<char>(text, boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::range_error("malformed wide text");
    }
}

bool appendAscii(std::string& to, const std::wstring& text)
{
    if (!isAscii(text)) {
        return false;
    }
    const auto start = to.size();
    to.resize(start + text.size());
    std::transform(text.begin(), text.end(), to.begin() + static_cast<std::ptrdiff_t>(start),
                   [](wchar_t character) { return static_cast<char>(character); });
    return true;
}

std::wstring fromUtf8(std::string_view utf8)
{
    constexpr utf::code_point replacement = 0xFFFD;
    if (isAscii(utf8)) {
        return {utf8.begin(), utf8.end()};
    }
    std::wstring wide;
    wide.reserve(utf8.size());
    const auto* const end = utf8.data() + utf8.size();
    for (const auto* next = utf8.data(); next != end;) {
        const auto* const start = next;
        auto codePoint = utf::utf_traits<char>::decode(next, end);
        if (!utf::is_valid_codepoint(codePoint)) {
            // What follows a sequence that is cut short is a character of its own.
            codePoint = replacement;
            next = std::find_if_not(start + 1, end, utf::utf_traits<char>::is_trail);
        }
        utf::utf_traits<wchar_t>::encode(codePoint, std::back_inserter(wide));
    }
    return wide;
}

std::size_t asciiLength(std::wstring_view text)
{
    return static_cast<std::size_t>(endOfAscii(text.data(), text.data() + text.size()) - text.data());
}

bool isUtf8(std::string_view text)
{
    const auto* const end = text.data() + text.size();
    for (const auto* next = text.data(); next != end;) {
        next = endOfAscii(next, end);
        if (next != end && !utf::is_valid_codepoint(utf::utf_traits<char>::decode(next, end))) {
            return false;
        }
    }
    return true;
}
} // namespace Platform
