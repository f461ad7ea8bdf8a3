#include "CompletionWindow.h"

#include <condition_variable>
#include <mutex>

struct CompletionWindow::State
{
    HWND__ window;
    std::mutex mutex;
    std::condition_variable arrived;
    bool operationEnded = false;
};

CompletionWindow::CompletionWindow() : m_state(std::make_unique<State>())
{
    // Called on the operation's thread: only tell the thread that waits.
    m_state->window.post = [state = m_state.get()](UINT message, WPARAM /*wParam*/, LPARAM /*lParam*/) {
        const std::lock_guard lock(state->mutex);
        state->operationEnded = state->operationEnded || message == WM_ASYNC_REQUEST_FINISHED;
        state->arrived.notify_one();
    };
}

CompletionWindow::~CompletionWindow() = default;

HWND CompletionWindow::handle() const
{
    return &m_state->window;
}

void CompletionWindow::waitForOperation()
{
    std::unique_lock lock(m_state->mutex);
    m_state->arrived.wait(lock, [this] { return m_state->operationEnded; });
    m_state->operationEnded = false;
}
