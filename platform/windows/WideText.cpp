#include "WideText.h"

#include <windows.h>

#include <stdexcept>

void Platform::requireWellFormed(const std::wstring& text)
{
    for (auto unit = text.begin(); unit != text.end(); ++unit) {
        if (IS_HIGH_SURROGATE(*unit) && unit + 1 != text.end() && IS_LOW_SURROGATE(unit[1])) {
            ++unit;
        } else if (IS_HIGH_SURROGATE(*unit) || IS_LOW_SURROGATE(*unit)) {
            throw std::range_error("malformed wide text");
        }
    }
}
