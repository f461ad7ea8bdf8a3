// Uses try-it.cmd of the current folder as a person would: opens a session in the window that it brings up,
// closes the window, and waits for what it has started.
#include "desktop/DesktopHost.h"

#include "resource.h"

#include <exception>
#include <iostream>

namespace
{
void openAndCloseSession()
{
    HostWindow window;
    waitUntil("the main window", [&] {
        window = HostWindow(FindWindowW(nullptr, L"Vantry help desk"));
        return IsWindowVisible(window.handle()) != FALSE;
    });
    window.click(IDC_OPEN_SESSION);
    waitUntil("the list of tickets",
              [&] { return window.text(IDC_STATUS_BAR) == L"Tickets of client 42: 0"; });
    window.click(IDC_CLOSE_SESSION);
    waitUntil("the end of the session", [&] { return !window.isEnabled(IDC_CLOSE_SESSION); });
    window.close();
}
} // namespace

int main()
{
    try {
        const Process tryIt(L"cmd /c try-it.cmd", true);
        openAndCloseSession();
        return static_cast<int>(tryIt.exitCode());
    } catch (const std::exception& error) {
        std::cerr << "vantry-use-try-it: " << error.what() << '\n';
        return 1;
    }
}
