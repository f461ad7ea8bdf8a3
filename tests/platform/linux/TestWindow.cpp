#include "TestWindow.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>

struct TestWindow::State
{
    std::mutex mutex;
    std::condition_variable arrived;
    std::deque<PostedMessage> messages;
    HWND__ window;
    bool dead = false;
    std::chrono::milliseconds delay{0};
};

TestWindow::TestWindow() : m_state(std::make_unique<State>())
{
    m_state->window.post = [state = m_state.get()](UINT message, WPARAM wParam, LPARAM lParam) {
        std::unique_lock lock(state->mutex);
        if (state->dead) {
            throw std::runtime_error("the window is gone");
        }
        state->messages.push_back({message, wParam, lParam});
        state->arrived.notify_one();
        const auto delay = state->delay;
        lock.unlock();
        std::this_thread::sleep_for(delay);
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

void TestWindow::delaySender(std::chrono::milliseconds time)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->delay = time;
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
