#pragma once

#include "CertificateQuestion.h"
#include "Operations.h"
#include "Settings.h"

#include <deque>
#include <filesystem>
#include <memory>
#include <string>

/// What the commands take from the window and show in it.
class CommandsView : public OperationsView
{
public:
    virtual HWND handle() const = 0;
    virtual Settings settings() const = 0;
    virtual std::wstring selectedTicket() const = 0;
    virtual void showTickets(std::vector<TicketListEntry> tickets, const std::wstring& selectedId) = 0;
    virtual void showStatus(const std::wstring& status) = 0;
    /// Tells that a command needs something else in a field first.
    virtual void showWrongEntry(int field, const std::wstring& explanation) = 0;
};

/// The window's commands: each checks what was entered, starts an operation and says what follows. The window
/// calls one only if `isAllowed`.
class Commands
{
public:
    Commands(CommandsView& view, Operations& operations);
    ~Commands();
    Commands(const Commands&) = delete;
    Commands(Commands&&) = delete;
    Commands& operator=(const Commands&) = delete;
    Commands& operator=(Commands&&) = delete;

    bool isSessionOpen() const { return m_isSessionOpen; }
    bool isAllowed(int command) const;
    /// Ticket of the note that files go to; empty: there is none.
    const std::wstring& notedTicket() const { return m_notedTicket; }

    void openSession();
    void closeSession();
    void showTickets();
    void newTicket();
    void addNote();
    void attachFiles(std::deque<std::filesystem::path> files);

    CertificateQuestion& certificateQuestion() { return *m_certificateQuestion; }

private:
    bool checkEntity();
    void listTickets(const std::wstring& selectedId);
    void attachNext();

    CommandsView& m_view;
    Operations& m_operations;
    std::shared_ptr<CertificateQuestion> m_certificateQuestion; ///< shared with the library's callback
    bool m_isSessionOpen = false;
    std::wstring m_notedTicket; ///< of the note saved last, which files are attached to
    std::deque<std::filesystem::path> m_filesToAttach;
};
