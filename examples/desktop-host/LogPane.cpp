#include "LogPane.h"

#include <commctrl.h>

namespace
{
constexpr int longest = 256 * 1024; ///< characters

/// A text field of several lines wants Tab, Enter and Esc for itself; this one leaves them to the window.
LRESULT CALLBACK leaveKeys(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR /*id*/,
                           DWORD_PTR /*data*/)
{
    const LRESULT result = DefSubclassProc(pane, message, wParam, lParam);
    return message == WM_GETDLGCODE ? result & ~(DLGC_WANTALLKEYS | DLGC_WANTTAB | DLGC_HASSETSEL) : result;
}

void removeOldest(HWND pane, int length)
{
    const auto line = SendMessageW(pane, EM_LINEFROMCHAR, static_cast<WPARAM>(length), 0);
    SendMessageW(pane, EM_SETSEL, 0, SendMessageW(pane, EM_LINEINDEX, static_cast<WPARAM>(line + 1), 0));
    SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
}
} // namespace

void LogPane::prepare(HWND pane)
{
    SendMessageW(pane, EM_SETLIMITTEXT, 2 * longest, 0);
    SetWindowSubclass(pane, &leaveKeys, 0, 0);
}

void LogPane::show(HWND pane, LogQueue& queue)
{
    std::wstring text;
    for (const auto& line : queue.take()) {
        text += line;
    }
    text.resize(text.size() <= longest ? text.size() : longest);
    const auto newLength = static_cast<int>(text.size());
    SendMessageW(pane, WM_SETREDRAW, FALSE, 0);
    const int excess = GetWindowTextLengthW(pane) + newLength - longest;
    if (excess > 0) {
        removeOldest(pane, excess);
    }
    const int end = GetWindowTextLengthW(pane);
    SendMessageW(pane, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageW(pane, WM_SETREDRAW, TRUE, 0);
    SendMessageW(pane, EM_SCROLLCARET, 0, 0);
    InvalidateRect(pane, nullptr, FALSE);
}
