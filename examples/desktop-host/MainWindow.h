#pragma once

#include "Commands.h"
#include "Layout.h"
#include "Log.h"
#include "TicketList.h"

#include <memory>
#include <optional>
#include <string>

/// The program's window, a dialog of the resource. It lives until the operation that runs when it is closed
/// has ended: the library posts to it, and the certificate question comes to it.
class MainWindow final : private CommandsView
{
public:
    /// Creates the window and shows it.
    /// @throws std::system_error
    MainWindow(const Settings& settings, std::shared_ptr<LogQueue> log, int showCommand);
    ~MainWindow() override;
    MainWindow(const MainWindow&) = delete;
    MainWindow(MainWindow&&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
    MainWindow& operator=(MainWindow&&) = delete;

    /// Handles messages until the window is gone.
    void run();

private:
    static INT_PTR CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool handle(UINT message, WPARAM wParam, LPARAM lParam);
    void initialise(HWND window);
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
    std::wstring serverName() const;

    HWND handle() const override { return m_window; }
    Settings settings() const override;
    std::wstring selectedTicket() const override { return m_tickets.selectedId(); }
    void showTickets(std::vector<TicketListEntry> tickets, const std::wstring& selectedId) override;
    void showStatus(const std::wstring& status) override;
    void showWrongEntry(int field, const std::wstring& explanation) override;
    void showBusy(const std::wstring& progress) override;
    void showIdle() override;
    void showFailure(const std::wstring& failure, const ResponseStatus& response) override;

    const Settings m_initial;
    HWND m_window = nullptr;
    HWND m_busyFocus = nullptr; ///< gets the focus back when the operation has ended
    bool m_isClosing = false;
    bool m_hasLog = false;
    std::shared_ptr<LogQueue> m_log;
    Layout m_layout;
    TicketList m_tickets;
    Operations m_operations{*this};
    std::unique_ptr<Commands> m_commands; ///< as long as there is the window
};
