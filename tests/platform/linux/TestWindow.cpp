#include "TestWindow.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>

struct TestWindow::State
{
    std::mutex mutex;
    std::condition_variable arrived;
    std::deque<PostedMessage> messages;
    HWND__ window;
    bool dead = false;
};

TestWindow::TestWindow() : m_state(std::make_unique<State>())
{
    m_state->window.post = [state = m_state.get()](UINT message, WPARAM wParam, LPARAM lParam) {
        const std::lock_guard lock(state->mutex);
        if (state->dead) {
            throw std::runtime_error("the window is gone");
        }
        state->messages.push_back({message, wParam, lParam});
        state->arrived.notify_one();
    };
}

TestWindow::~TestWindow() = default;

HWND TestWindow::handle() const
{
    return &m_state->window;
}

void TestWindow::die()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->dead = true;
}

std::optional<PostedMessage> TestWindow::next(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_state->mutex);
    if (!m_state->arrived.wait_for(lock, limit, [this] { return !m_state->messages.empty(); })) {
        return std::nullopt;
    }
    const auto message = m_state->messages.front();
    m_state->messages.pop_front();
    return message;
}
