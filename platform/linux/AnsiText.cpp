#include "AnsiText.h"

#include "Utf8.h"

namespace Platform
{
std::wstring fromAnsi(std::string_view text)
{
    return fromUtf8(text);
}

std::string toAnsi(const std::wstring& text)
{
    return toUtf8(text);
}
} // namespace Platform
