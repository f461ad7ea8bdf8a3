#include "CompletionWindow.h"

#include <windows.h>

#include <optional>
#include <system_error>

struct CompletionWindow::State
{
    HWND window;
};

// It needs no procedure of its own: what is posted to it passes through the loop of waitForOperation.
CompletionWindow::CompletionWindow()
    : m_state(
          std::make_unique<State>(State{CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 0, 0, nullptr,
                                                        nullptr, GetModuleHandleW(nullptr), nullptr)}))
{
    if (m_state->window == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "CreateWindowEx");
    }
}

CompletionWindow::~CompletionWindow()
{
    DestroyWindow(m_state->window);
}

HWND CompletionWindow::handle() const
{
    return m_state->window;
}

void CompletionWindow::waitForOperation()
{
    bool operationEnded = false;
    std::optional<int> quitCode;
    MSG message;
    // The results may be read only when the operation has ended, even if the program is to end before.
    while (!operationEnded) {
        if (GetMessageW(&message, nullptr, 0, 0) > 0) {
            operationEnded = message.hwnd == m_state->window && message.message == WM_ASYNC_REQUEST_FINISHED;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        } else {
            quitCode = static_cast<int>(message.wParam);
        }
    }
    if (quitCode) {
        PostQuitMessage(*quitCode); // for the loop that comes next
    }
}
