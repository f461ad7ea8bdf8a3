#pragma once

#include <windows.h>

#include <vector>

/// Keeps the main dialog's controls in their places when its size changes. They are those of the resource, at
/// the resolution of the screen that the dialog is on.
class Layout
{
public:
    explicit Layout(HWND dialog);

    /// @param hasLog whether the log takes its part, or leaves it to the list
    void arrange(bool hasLog) const;

    /// Of the dialog, below which its controls would not fit.
    POINT smallestSize() const { return {scaled(m_dialogSize.cx), scaled(m_dialogSize.cy)}; }

    /// From the resolution of the start to the present one.
    int scaled(int value) const;

private:
    HWND m_dialog;
    UINT m_dpi;
    SIZE m_dialogSize;
    SIZE m_clientSize;
    int m_logHeight; ///< which the list has while the log is hidden
    std::vector<RECT> m_places;
};
