#include "WideText.h"

#include "Utf8.h"

#include <windows.h>

std::size_t Platform::firstMalformed(const std::wstring& text, std::size_t from)
{
    const std::wstring_view units = text;
    const auto nextOther = [units](std::size_t at) { return at + asciiLength(units.substr(at)); };
    for (auto unit = nextOther(from); unit < text.size(); unit = nextOther(unit + 1)) {
        if (IS_HIGH_SURROGATE(text[unit]) && unit + 1 < text.size() && IS_LOW_SURROGATE(text[unit + 1])) {
            ++unit;
        } else if (IS_HIGH_SURROGATE(text[unit]) || IS_LOW_SURROGATE(text[unit])) {
            return unit;
        }
    }
    return text.size();
}
