#include "TestWindow.h"

#include <windows.h>

#include <stdexcept>

struct TestWindow::State
{
    HWND window;
};

// A message-only window: it receives what is posted to it and next to nothing of the system's own.
TestWindow::TestWindow()
    : m_state(std::make_unique<State>(State{CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE,
                                                            nullptr, GetModuleHandleW(nullptr), nullptr)}))
{
    if (m_state->window == nullptr) {
        throw std::runtime_error("CreateWindowExW failed with " + std::to_string(GetLastError()));
    }
}

TestWindow::~TestWindow()
{
    die();
}

void TestWindow::die()
{
    DestroyWindow(m_state->window);
}

void TestWindow::delaySender(std::chrono::milliseconds /*time*/) {}

HWND TestWindow::handle() const
{
    return m_state->window;
}

std::optional<PostedMessage> TestWindow::next(std::chrono::milliseconds limit)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + limit;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
            if (message.hwnd == m_state->window && message.message >= WM_USER) {
                return PostedMessage{message.message, message.wParam, message.lParam};
            }
            DispatchMessageW(&message);
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            return std::nullopt;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(left.count()), QS_ALLINPUT);
    }
}
