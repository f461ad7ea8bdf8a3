#pragma once

#include "Commands.h"
#include "Layout.h"
#include "Log.h"
#include "TicketList.h"

#include <memory>
#include <string>
#include <vector>

/// The program's window, a dialog of the resource. It lives until the operation that runs when it is closed
/// has ended: the library posts to it, and the certificate question comes to it.
class MainWindow
{
public:
    /// @throws std::system_error
    explicit MainWindow(const Settings& settings);

    /// Shows the window and handles messages until it is gone.
    void run(int showCommand);

    // What the commands take from the window and show in it.
    HWND handle() const { return m_window; }
    Settings settings() const;
    std::wstring selectedTicket() const { return m_tickets.selectedId(); }
    void showTickets(std::vector<TicketListEntry> tickets, const std::wstring& selectedId);
    void showStatus(const std::wstring& status);
    /// Tells that a command needs something else in a field first.
    void showWrongEntry(int field, const std::wstring& explanation);
    void showBusy(const std::wstring& progress);
    void showIdle();
    void showFailure(const std::wstring& failure, const ResponseStatus& response);

private:
    static INT_PTR CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool handle(UINT message, WPARAM wParam, LPARAM lParam);
    void control(int id, int event);
    void command(int id);
    void notify(NMHDR& header);
    void arrange();
    void showLog(bool isShown);
    void updateControls();
    void enableCommands();
    void chooseDefault();
    void focusOn(HWND control) const;
    void close();

    const Settings m_initial;
    HWND const m_window;
    const std::shared_ptr<LogQueue> m_log;
    HWND m_busyFocus = nullptr; ///< gets the focus back when the operation has ended
    bool m_isClosing = false;
    bool m_hasLog = false;
    Layout m_layout;
    TicketList m_tickets;
    Commands m_commands;
};
