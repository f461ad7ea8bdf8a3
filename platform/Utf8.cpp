#include "Utf8.h"

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <stdexcept>
#include <type_traits>

namespace utf = boost::locale::utf;
using Narrow = utf::utf_traits<char>;
using Wide = utf::utf_traits<wchar_t>;

namespace
{
/// The first character that is not ASCII, or the end: most text is ASCII, which goes fast this way.
template <typename Character>
const Character* endOfAscii(const Character* from, const Character* end)
{
    while (from != end && static_cast<std::make_unsigned_t<Character>>(*from) < 0x80) {
        ++from;
    }
    return from;
}

template <typename From, typename To>
void copyAscii(const From*& from, const From* end, To*& to)
{
    const auto* const stop = endOfAscii(from, end);
    to = std::copy(from, stop, to);
    from = stop;
}
} // namespace

namespace Platform
{
std::string toUtf8(const std::wstring& text)
{
    const auto* const end = text.data() + text.size();
    std::size_t size = 0;
    for (const auto* next = text.data(); next != end;) {
        const auto* const start = next;
        next = endOfAscii(start, end);
        size += static_cast<std::size_t>(next - start);
        if (next == end) {
            break;
        }
        const auto codePoint = Wide::decode(next, end);
        if (!utf::is_valid_codepoint(codePoint)) {
            throw std::range_error("malformed wide text");
        }
        size += static_cast<std::size_t>(Narrow::width(codePoint));
    }
    std::string utf8(size, '\0');
    auto* out = utf8.data();
    for (const auto* next = text.data(); next != end;) {
        copyAscii(next, end, out);
        if (next != end) {
            out = Narrow::encode(Wide::decode_valid(next), out);
        }
    }
    return utf8;
}

std::wstring fromUtf8(std::string_view utf8)
{
    constexpr utf::code_point replacement = 0xFFFD;
    std::wstring wide(utf8.size(), L'\0'); // no text is longer than its UTF-8
    auto* out = wide.data();
    const auto* const end = utf8.data() + utf8.size();
    for (const auto* next = utf8.data(); next != end;) {
        copyAscii(next, end, out);
        if (next == end) {
            break;
        }
        const auto* const start = next;
        auto codePoint = Narrow::decode(next, end);
        if (!utf::is_valid_codepoint(codePoint)) {
            // What follows a sequence that is cut short is a character of its own.
            codePoint = replacement;
            next = std::find_if_not(start + 1, end, Narrow::is_trail);
        }
        out = Wide::encode(codePoint, out);
    }
    wide.resize(static_cast<std::size_t>(out - wide.data()));
    return wide;
}

bool isUtf8(std::string_view text)
{
    for (const auto* next = text.begin(); next != text.end();) {
        next = endOfAscii(next, text.end());
        if (next != text.end() && !utf::is_valid_codepoint(Narrow::decode(next, text.end()))) {
            return false;
        }
    }
    return true;
}
} // namespace Platform
