#pragma once

#include <windows.h>

/// Makes the window's font and arranges its controls, for the resolution of the screen that it is on.
class Layout
{
public:
    ~Layout();
    Layout() = default;
    Layout(const Layout&) = delete;
    Layout(Layout&&) = delete;
    Layout& operator=(const Layout&) = delete;
    Layout& operator=(Layout&&) = delete;

    /// Takes over the resolution: at the start, and whenever the window comes to another screen.
    void setDpi(HWND window, UINT dpi);

    /// Places all controls in the window's client area.
    void arrange(HWND window) const;

    /// `value` is in units of 1/96 inch, as all lengths of a layout are.
    int scaled(int value) const { return MulDiv(value, static_cast<int>(m_dpi), USER_DEFAULT_SCREEN_DPI); }

private:
    UINT m_dpi = USER_DEFAULT_SCREEN_DPI;
    HFONT m_font = nullptr;
};
