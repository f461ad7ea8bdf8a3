#include "CompletionWindow.h"

#include <windows.h>

#include <optional>
#include <system_error>

struct CompletionWindow::State
{
    HWND window = nullptr;
    bool operationEnded = false;
};

namespace
{
constexpr const wchar_t* className = L"VantryConsoleHost";

/// The window's user data is the flag that the completion message sets.
LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_ASYNC_REQUEST_FINISHED) {
        *reinterpret_cast<bool*>(GetWindowLongPtrW(window, GWLP_USERDATA)) = true;
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

[[noreturn]] void throwLastError(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}
} // namespace

CompletionWindow::CompletionWindow() : m_state(std::make_unique<State>())
{
    HINSTANCE const module = GetModuleHandleW(nullptr);
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &handleMessage;
    windowClass.hInstance = module;
    windowClass.lpszClassName = className;
    if (RegisterClassW(&windowClass) == 0) {
        throwLastError("RegisterClass");
    }
    m_state->window =
        CreateWindowExW(0, className, L"", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr, module, nullptr);
    if (m_state->window == nullptr) {
        throwLastError("CreateWindowEx");
    }
    SetWindowLongPtrW(m_state->window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&m_state->operationEnded));
}

CompletionWindow::~CompletionWindow()
{
    DestroyWindow(m_state->window);
    UnregisterClassW(className, GetModuleHandleW(nullptr));
}

HWND CompletionWindow::handle() const
{
    return m_state->window;
}

void CompletionWindow::waitForOperation()
{
    m_state->operationEnded = false;
    std::optional<int> quitCode;
    MSG message;
    // The results may be read only when the operation has ended, even if the program is to end before.
    while (!m_state->operationEnded) {
        if (GetMessageW(&message, nullptr, 0, 0) > 0) {
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
