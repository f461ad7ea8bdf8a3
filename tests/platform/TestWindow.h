/// @file
/// A host's window, whose messages the test thread takes one by one.
#pragma once

#include "TAVIKVANTRYAPI.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

struct PostedMessage
{
    unsigned int message;
    std::uintptr_t wParam;
    std::intptr_t lParam;
};

class TestWindow
{
public:
    TestWindow();
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND handle() const;

    /// Closes the window: nothing that is posted to it arrives any more.
    void die();

    /// From now on whoever posts is slow to go on. On Windows the system decides that.
    void delaySender(std::chrono::milliseconds time);

    /// The next message that was posted to the window; nothing if none comes within the limit.
    std::optional<PostedMessage> next(std::chrono::milliseconds limit);

private:
    struct State;
    std::unique_ptr<State> m_state;
};
