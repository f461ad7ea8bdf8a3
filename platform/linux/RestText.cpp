#include "RestText.h"

#include "Utf8.h"

namespace Platform
{
utility::string_t toRestText(const std::wstring& text)
{
    return toUtf8(text);
}

std::wstring fromRestText(const utility::string_t& text)
{
    return fromUtf8(text);
}

utility::string_t restTextOfUtf8(std::string utf8)
{
    return utf8;
}
} // namespace Platform
