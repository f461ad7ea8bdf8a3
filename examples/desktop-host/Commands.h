#pragma once

#include <windows.h>

#include "CertificateInfo.h"
#include "Settings.h"
#include "TAVIKVANTRYAPI.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>

class MainWindow;

/// Sent to the window by an operation's thread, which waits for `Commands::isTrusted` of the
/// `CertificateInfo`.
constexpr UINT WM_ASK_ABOUT_CERTIFICATE = WM_APP + 1;

/// One operation of the library and what follows on its end. Every function runs on the window's thread.
struct Operation
{
    std::wstring progress;                ///< what the person reads meanwhile
    std::wstring failure;                 ///< what a failure means for the person
    std::int32_t successCode;             ///< of the operation's kind
    std::function<void()> start;          ///< calls the export
    std::function<void()> succeeded = {}; ///< takes the results over; may be empty
    std::function<void()> failed = {};    ///< may be empty
    std::function<void()> next = {}; ///< goes on after a success, with another operation say; may be empty
};

/// The window's commands: each checks what was entered, starts an operation and says what follows. The window
/// calls one only if `isAllowed`, so that one operation runs at a time. The library neither refuses a second
/// one nor guards its results: whoever starts one while another runs, or reads results meanwhile, races with
/// the library's thread.
class Commands
{
public:
    explicit Commands(MainWindow& window);

    bool isRunning() const { return m_running.has_value(); }
    bool isSessionOpen() const { return m_isSessionOpen; }
    bool isAllowed(int command) const;
    /// Ticket of the note that files go to; empty: there is none.
    const std::wstring& notedTicket() const { return m_notedTicket; }

    void openSession();
    void closeSession();
    void showTickets();
    void newTicket();
    void addNote();
    void attachChosenFiles();
    /// If it is allowed now: files can be dropped at any time.
    void attachFiles(std::deque<std::filesystem::path> files);

    /// The library asks in every operation; the person is asked until a certificate is trusted, which then
    /// holds until the program ends.
    bool isTrusted(const CertificateInfo& certificate);

    /// The question that waits and all that come are answered by a refusal, for the window is closing.
    void refuseCertificates();

    /// On `WM_ASYNC_REQUEST_FINISHED`.
    void finished();

    /// From now on an operation that ends is the last of its chain, and a failure is not told.
    void wrapUp() { m_isWrappingUp = true; }

private:
    bool checkEntity();
    void listTickets(const std::wstring& selectedId);
    void attachNext();
    void run(Operation operation);
    void end(const ResponseStatus& response);

    MainWindow& m_window;
    std::optional<Operation> m_running;
    bool m_isWrappingUp = false;
    std::set<std::wstring> m_trusted; ///< fingerprints
    bool m_isRefusing = false;
    bool m_isSessionOpen = false;
    std::wstring m_notedTicket; ///< of the note saved last, which files are attached to
    std::deque<std::filesystem::path> m_filesToAttach;
};
