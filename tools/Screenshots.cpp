// Brings the desktop host into the states that the documentation shows. For each it writes "NAME
// WIDTHxHEIGHT+X+Y" and waits for a line: until then the screen stands still.
#include "desktop/DesktopHost.h"
#include "platform/PlatformSupport.h"
#include "support/Sandbox.h"

#include "resource.h"

#include <exception>
#include <iostream>

namespace
{
void show(const std::string& name, const HostWindow& window)
{
    Sleep(1000); // until everything is painted
    RECT area{};
    GetWindowRect(window.handle(), &area);
    std::cout << name << ' ' << area.right - area.left << 'x' << area.bottom - area.top << '+' << area.left
              << '+' << area.top << std::endl;
    std::string line;
    std::getline(std::cin, line);
}

void createTicket(const DesktopHost& host, const std::wstring& subject, const std::wstring& detail)
{
    host.window().click(IDC_NEW_TICKET);
    const auto dialog = host.dialog();
    dialog.enter(IDC_TICKET_SUBJECT, subject);
    dialog.enter(IDC_TICKET_DETAIL, detail);
    dialog.closeBy(IDOK);
}

void showJob(const Sandbox& sandbox)
{
    const DesktopHost host(L"--endpoint " + sandbox.https + L" --user " + sandbox.user + L" --password " +
                           sandbox.password + L" --client 42");
    host.window().click(IDC_OPEN_SESSION);
    const auto question = host.dialog();
    show("desktop-host-certificate", question);
    question.click(IDOK);
    host.waitForStatus(L"Tickets of client 42: 0");
    createTicket(host, L"Printer in the hall does not print", L"It blinks twice and goes silent.");
    host.waitForStatus(L"Tickets of client 42: 1");
    createTicket(host, L"No sound in meeting room 2", L"The speakers are plugged in.");
    host.waitForStatus(L"Tickets of client 42: 2");
    createTicket(host, L"New laptop for Ms Weber", L"Starts on Monday, needs a docking station.");
    host.waitForStatus(L"Tickets of client 42: 3");
    host.window().click(IDC_ADD_NOTE);
    const auto note = host.dialog();
    note.enter(IDC_NOTE_TEXT, L"Ordered; arrives on Friday.");
    note.click(IDOK);
    host.waitForStatus(L"The note on ticket 1003 is saved. Files go to this note.");
    show("desktop-host", host.window());
}

void showFailure(const Sandbox& sandbox)
{
    const DesktopHost host(L"--endpoint " + sandbox.http + L" --user " + sandbox.user +
                           L" --password mistyped");
    host.window().click(IDC_OPEN_SESSION);
    show("desktop-host-failure", host.dialog());
}
} // namespace

int main()
{
    try {
        const Sandbox sandbox;
        trustAuthority(sandbox.authorityFile, sandbox.get("/ca.der"));
        showJob(sandbox);
        showFailure(sandbox);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "vantry-desktop-screenshots: " << error.what() << '\n';
        return 1;
    }
}
