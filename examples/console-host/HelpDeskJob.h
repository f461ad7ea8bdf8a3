#pragma once

#include "CertificateQuestion.h"
#include "CompletionWindow.h"
#include "Options.h"

#include <functional>
#include <optional>
#include <string>

/// The main job of a host: within a session, creates a ticket with a note and a file and lists the tickets.
class HelpDeskJob
{
public:
    /// @throws std::runtime_error if the file to attach cannot be read
    explicit HelpDeskJob(const Options& options);
    ~HelpDeskJob();
    HelpDeskJob(const HelpDeskJob&) = delete;
    HelpDeskJob(HelpDeskJob&&) = delete;
    HelpDeskJob& operator=(const HelpDeskJob&) = delete;
    HelpDeskJob& operator=(HelpDeskJob&&) = delete;

    /// Runs until the first step that fails, and tells about each. An opened session is closed in any case.
    bool run();

private:
    bool createTicket();
    bool saveNote();
    bool attachFile();
    bool listTickets();
    bool perform(const std::string& task, std::int32_t successCode, const std::function<void()>& operation);

    TicketCreationInformation m_ticket;
    TechNote m_note;
    Attachment m_attachment;
    CertificateQuestion m_certificateQuestion;
    std::optional<CompletionWindow> m_window;
};
