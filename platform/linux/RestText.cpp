#include "RestText.h"

#include "Utf8.h"

namespace Platform
{
utility::string_t toRestText(const std::wstring& text)
{
    return toUtf8(text);
}

std::string utf8OfRestText(utility::string_t text)
{
    return text;
}

std::wstring fromRestText(const utility::string_t& text)
{
    return fromUtf8(text);
}

utility::string_t restTextOfUtf8(std::string utf8)
{
    // The REST SDK takes the byte 0xFF for the end of the text.
    return isUtf8(utf8) ? std::move(utf8) : toUtf8(fromUtf8(utf8));
}

utility::string_t toParserText(utility::string_t json)
{
    return json;
}
} // namespace Platform
