/// @file
/// The desktop host in a process of its own, seen and used through its windows as a person would.
#pragma once

#include "resource.h"

#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// Waits until `isTrue`; throws with `what` when it takes too long.
void waitUntil(const std::string& what, const std::function<bool()>& isTrue);

/// A window of the host and its controls. A control is used only if a person could: not while it is disabled.
class HostWindow
{
public:
    explicit HostWindow(HWND window = nullptr) : m_window(window) {}

    HWND handle() const { return m_window; }
    HWND control(int id) const;
    std::wstring text(int id) const;
    bool isEnabled(int id) const { return IsWindowEnabled(control(id)) != FALSE; }
    bool isVisible(int id) const { return IsWindowVisible(control(id)) != FALSE; }
    bool exists() const { return IsWindow(m_window) != FALSE; }

    void enter(int id, const std::wstring& text) const;
    void click(int id) const;
    /// Uses an entry of the menu.
    void choose(int id) const { PostMessageW(m_window, WM_COMMAND, static_cast<WPARAM>(id), 0); }
    /// Clicks, and waits for the window to go.
    void closeBy(int id) const;
    void close() const { PostMessageW(m_window, WM_CLOSE, 0, 0); }

private:
    HWND usableControl(int id) const;

    HWND m_window;
};

/// A process, which is ended with this object if it is still there.
class Process
{
public:
    /// @param inherits whether it writes where this process does
    Process(std::wstring commandLine, bool inherits);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    HANDLE handle() const { return m_information.hProcess; }
    DWORD id() const { return m_information.dwProcessId; }

    /// Waits for its end.
    DWORD exitCode() const;

private:
    PROCESS_INFORMATION m_information{};
};

class DesktopHost
{
public:
    /// Starts the program that lies beside this one and waits for its window.
    explicit DesktopHost(const std::wstring& arguments);

    const HostWindow& window() const { return m_window; }

    /// The next dialog that the program shows.
    HostWindow dialog() const;
    bool hasDialog() const { return findWindow(true) != nullptr; }

    /// Waits until the program has shown this in its status bar and is ready for the next command.
    void waitForStatus(const std::wstring& status) const;
    bool isBusy() const { return m_window.isVisible(IDC_PROGRESS); }

    /// The cells of the tickets' list, row by row.
    std::vector<std::vector<std::wstring>> tickets() const;

    void pressKey(WPARAM key) const;
    /// Number of the control that has the focus.
    int focus() const;
    /// Those that are drawn as what Enter does.
    std::vector<int> defaultButtons() const;
    void drop(const std::vector<std::filesystem::path>& files) const;

    DWORD exitCode() const { return m_process.exitCode(); }

private:
    void* allocate(std::size_t size) const;
    void write(void* address, const void* data, std::size_t size) const;
    HWND findWindow(bool isOwned) const;

    Process m_process;
    HostWindow m_window;
};
