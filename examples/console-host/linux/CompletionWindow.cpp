#include "CompletionWindow.h"

#include <condition_variable>
#include <mutex>
#include <queue>

struct CompletionWindow::State
{
    HWND__ window;
    std::mutex mutex;
    std::condition_variable arrived;
    std::queue<UINT> messages;
};

CompletionWindow::CompletionWindow() : m_state(std::make_unique<State>())
{
    // Called on the operation's thread: only queue the message for the thread that waits.
    m_state->window.post = [state = m_state.get()](UINT message, WPARAM /*wParam*/, LPARAM /*lParam*/) {
        const std::lock_guard lock(state->mutex);
        state->messages.push(message);
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
    UINT message = 0;
    while (message != WM_ASYNC_REQUEST_FINISHED) {
        std::unique_lock lock(m_state->mutex);
        m_state->arrived.wait(lock, [this] { return !m_state->messages.empty(); });
        message = m_state->messages.front();
        m_state->messages.pop();
    }
}
