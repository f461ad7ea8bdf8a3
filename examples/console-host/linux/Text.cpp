#include "Text.h"

#include <codecvt>
#include <locale>
#include <stdexcept>

namespace
{
using Conversion = std::wstring_convert<std::codecvt_utf8<wchar_t>>;
} // namespace

std::wstring toWide(const std::string& utf8)
{
    Conversion conversion("", L""); // instead of an exception for text that is malformed
    auto text = conversion.from_bytes(utf8);
    if (conversion.converted() != utf8.size()) { // a character cut off at the end is not converted
        throw std::invalid_argument("a text of the command line is not valid UTF-8");
    }
    return text;
}

std::string toUtf8(const std::wstring& text)
{
    return Conversion().to_bytes(text);
}
