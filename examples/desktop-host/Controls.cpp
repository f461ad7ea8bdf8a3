#include "Controls.h"

#include <system_error>

std::wstring controlText(HWND parent, int id)
{
    HWND const control = GetDlgItem(parent, id);
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

void enableControl(HWND parent, int id, bool isEnabled)
{
    EnableWindow(GetDlgItem(parent, id), isEnabled ? TRUE : FALSE);
}

bool isControlEnabled(HWND parent, int id)
{
    return IsWindowEnabled(GetDlgItem(parent, id)) != FALSE;
}

void throwLastError(const char* call)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), call);
}
