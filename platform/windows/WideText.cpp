#include "WideText.h"

#include <windows.h>

std::size_t Platform::firstMalformed(const std::wstring& text, std::size_t from)
{
    for (auto unit = from; unit < text.size(); ++unit) {
        if (IS_HIGH_SURROGATE(text[unit]) && unit + 1 < text.size() && IS_LOW_SURROGATE(text[unit + 1])) {
            ++unit;
        } else if (IS_HIGH_SURROGATE(text[unit]) || IS_LOW_SURROGATE(text[unit])) {
            return unit;
        }
    }
    return text.size();
}
