#pragma once

#include "Commands.h"
#include "Layout.h"
#include "Log.h"

#include <memory>
#include <optional>
#include <string>

/// The program's window. It lives until the operation that runs when it is closed has ended: the library
/// posts to it, and the certificate question comes to it.
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
    static LRESULT CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> handleDialogMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void createControls(const Settings& settings);
    void command(int id);
    void notify(const NMHDR& header);
    void changeDpi(UINT dpi, const RECT& place);
    void arrange();
    void updateControls();
    void enableCommands();
    void showProgress(bool isShown);
    void close();
    int defaultCommand() const;

    HWND handle() const override { return m_window; }
    Settings settings() const override;
    std::wstring selectedTicket() const override;
    void showTickets(const std::vector<TicketListEntry>& tickets, const std::wstring& selectedId) override;
    void showStatus(const std::wstring& status) override;
    void showWrongEntry(int field, const std::wstring& explanation) override;
    void showBusy(const std::wstring& progress) override;
    void showIdle() override;
    void showFailure(const std::wstring& failure, const ResponseStatus& response) override;

    HWND m_window = nullptr;
    HWND m_focus = nullptr;     ///< has the focus when the window becomes active
    HWND m_busyFocus = nullptr; ///< gets the focus back when the operation has ended
    bool m_isClosing = false;
    std::shared_ptr<LogQueue> m_log;
    Layout m_layout;
    Operations m_operations{*this};
    std::unique_ptr<Commands> m_commands; ///< as long as there is the window
};
