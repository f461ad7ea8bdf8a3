// Uses try-it.cmd of the current folder as a person would: opens a session in the window that it brings up,
// closes the window, and waits for what it has started.
#include "desktop/DesktopHost.h"

#include "resource.h"

#include <exception>
#include <iostream>
#include <stdexcept>

namespace
{
HANDLE startTryIt()
{
    std::wstring commandLine = L"cmd /c try-it.cmd";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process) == FALSE) {
        throw std::runtime_error("cannot start try-it.cmd: error " + std::to_string(GetLastError()));
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}

void openAndCloseSession()
{
    HostWindow window;
    waitUntil("the main window", [&] {
        window = HostWindow(FindWindowW(L"VantryDesktopHost", nullptr));
        return IsWindowVisible(window.handle()) != FALSE;
    });
    window.click(IDC_OPEN_SESSION);
    waitUntil("the list of tickets",
              [&] { return window.text(IDC_STATUS_BAR) == L"Tickets of client 42: 0"; });
    window.click(IDC_CLOSE_SESSION);
    waitUntil("the end of the session", [&] { return !window.isEnabled(IDC_CLOSE_SESSION); });
    window.close();
}

DWORD exitCode(HANDLE process)
{
    DWORD code = STILL_ACTIVE;
    waitUntil("the end of try-it.cmd", [&] {
        GetExitCodeProcess(process, &code);
        return code != STILL_ACTIVE;
    });
    return code;
}
} // namespace

int main()
{
    try {
        HANDLE const tryIt = startTryIt();
        openAndCloseSession();
        return static_cast<int>(exitCode(tryIt));
    } catch (const std::exception& error) {
        std::cerr << "vantry-use-try-it: " << error.what() << '\n';
        return 1;
    }
}
