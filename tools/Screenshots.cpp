// Brings the desktop host into the states that the documentation shows, and writes their pictures to the
// current folder.
#include "desktop/DesktopHost.h"
#include "platform/PlatformSupport.h"
#include "support/Sandbox.h"

#include "resource.h"

#include <objidl.h>

#include <gdiplus.h>

#include <cwchar>
#include <exception>
#include <iostream>

namespace
{
/// A font that Wine knows a likeness of.
void setFonts()
{
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    for (auto* font :
         {&metrics.lfCaptionFont, &metrics.lfMenuFont, &metrics.lfStatusFont, &metrics.lfMessageFont}) {
        font->lfHeight = -24; // 9 points at 192 pixels per inch
        font->lfWeight = FW_NORMAL;
        std::wcscpy(font->lfFaceName, L"Segoe UI");
    }
    SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, sizeof metrics, &metrics, SPIF_UPDATEINIFILE);
}

void save(const std::wstring& name, const HostWindow& window)
{
    Sleep(2000); // until everything is painted
    RECT area{};
    GetWindowRect(window.handle(), &area);
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    Gdiplus::Bitmap picture(width, height);
    Gdiplus::Graphics graphics(&picture);
    HDC const screen = GetDC(nullptr);
    HDC const copy = graphics.GetHDC();
    BitBlt(copy, 0, 0, width, height, screen, area.left, area.top, SRCCOPY);
    graphics.ReleaseHDC(copy);
    ReleaseDC(nullptr, screen);
    constexpr CLSID png{0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
    if (picture.Save((name + L".png").c_str(), &png, nullptr) != Gdiplus::Ok) {
        throw std::runtime_error("cannot write a picture");
    }
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
    save(L"desktop-host-certificate", question);
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
    note.closeBy(IDOK);
    host.waitForStatus(L"The note on ticket 1003 is saved. Files go to this note.");
    save(L"desktop-host", host.window());
}

void showFailure(const Sandbox& sandbox)
{
    const DesktopHost host(L"--endpoint " + sandbox.https + L" --user " + sandbox.user +
                           L" --password mistyped");
    host.window().click(IDC_OPEN_SESSION);
    host.dialog().closeBy(IDOK); // the certificate
    save(L"desktop-host-failure", host.dialog());
}
} // namespace

int main()
{
    SetProcessDPIAware();
    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput startup;
    Gdiplus::GdiplusStartup(&token, &startup, nullptr);
    try {
        setFonts();
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
