#pragma once

#include "TAVIKVANTRYAPI.h"

#include <memory>

/// A window that the library notifies at the end of an asynchronous operation.
class CompletionWindow
{
public:
    CompletionWindow();
    ~CompletionWindow();
    CompletionWindow(const CompletionWindow&) = delete;
    CompletionWindow(CompletionWindow&&) = delete;
    CompletionWindow& operator=(const CompletionWindow&) = delete;
    CompletionWindow& operator=(CompletionWindow&&) = delete;

    [[nodiscard]] HWND handle() const;

    /// Handles the window's messages until the one operation under way has ended.
    void waitForOperation();

private:
    struct State;
    std::unique_ptr<State> m_state;
};
