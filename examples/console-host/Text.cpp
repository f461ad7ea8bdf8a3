#include "Text.h"

#include <algorithm>

std::string toTerminal(std::wstring text)
{
    const auto isControl = [](wchar_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); };
    std::replace_if(text.begin(), text.end(), isControl, L' ');
    return toUtf8(text);
}
