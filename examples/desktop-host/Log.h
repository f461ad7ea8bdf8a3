#pragma once

#include <windows.h>

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

/// Posted to the window when lines have come into an empty `LogQueue`.
constexpr UINT WM_LOG_LINES = WM_APP + 2;

/// Carries the lines of the log from any thread to the window's. No logging thread ever waits for the window:
/// a window that does not keep up loses the oldest lines, which is told in their place.
class LogQueue
{
public:
    /// Null: lines wait until there is a window, or are of no use any more.
    void setWindow(HWND window);

    void add(std::wstring line);
    std::deque<std::wstring> take();

private:
    static constexpr std::size_t limit = 1000;

    std::mutex m_mutex; ///< of all below
    HWND m_window = nullptr;
    std::deque<std::wstring> m_lines;
    std::size_t m_lost = 0;
};

/// The log4cxx configuration of the process: everything from level info on goes into the queue. The library
/// logs texts of tickets and the session's key at that level; think of it before a log goes into a file.
class Log
{
public:
    explicit Log(const std::shared_ptr<LogQueue>& queue);

    /// Lets log4cxx finish before the process does.
    ~Log();

    Log(const Log&) = delete;
    Log(Log&&) = delete;
    Log& operator=(const Log&) = delete;
    Log& operator=(Log&&) = delete;
};
