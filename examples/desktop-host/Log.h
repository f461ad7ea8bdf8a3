#pragma once

#include <windows.h>

#include <memory>
#include <mutex>
#include <string>

/// Posted to the window when lines have come into an empty `LogQueue`.
constexpr UINT WM_LOG_LINES = WM_APP + 2;

/// Carries the lines of the log from any thread to the window's. No logging thread ever waits for the window:
/// a window that does not keep up loses the oldest lines, as the pane does.
class LogQueue
{
public:
    explicit LogQueue(HWND window) : m_window(window) {}

    void add(const std::wstring& line);
    std::wstring take();

private:
    const HWND m_window;
    std::mutex m_mutex;
    std::wstring m_lines; ///< with the mutex
};

/// Lets log4cxx put everything from level info on into a queue, and finish when the process ends. The library
/// logs texts of tickets and the session's key at that level; think of it before a log goes into a file.
std::shared_ptr<LogQueue> startLog(HWND window);

/// Makes a read-only text field of the dialog the pane that shows the log: lines can be selected and copied.
void prepareLogPane(HWND pane);

/// Shows lines below those that are there, of which the oldest go when there are too many.
void showInLogPane(HWND pane, const std::wstring& lines);
