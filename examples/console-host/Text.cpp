#include "Text.h"

#include <algorithm>
#include <codecvt>
#include <locale>
#include <stdexcept>
#include <type_traits>

namespace
{
/// Wide characters are UTF-16 on Windows and whole ones elsewhere.
using Codec =
    std::conditional_t<sizeof(wchar_t) == 2, std::codecvt_utf8_utf16<wchar_t>, std::codecvt_utf8<wchar_t>>;

// What a conversion gives, instead of an exception, for text that is malformed.
constexpr const char* replacementCharacter = "\xEF\xBF\xBD";
constexpr const wchar_t* nothing = L"";
} // namespace

std::wstring toWide(const std::string& utf8)
{
    std::wstring_convert<Codec> conversion(replacementCharacter, nothing);
    auto text = conversion.from_bytes(utf8);
    if (conversion.converted() != utf8.size()) { // a character cut off at the end is not converted
        throw std::invalid_argument("a text of the command line is not valid UTF-8");
    }
    return text;
}

std::string toUtf8(const std::wstring& text)
{
    return std::wstring_convert<Codec>(replacementCharacter).to_bytes(text);
}

std::string toTerminal(std::wstring text)
{
    const auto isControl = [](wchar_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); };
    std::replace_if(text.begin(), text.end(), isControl, L' ');
    return toUtf8(text);
}
