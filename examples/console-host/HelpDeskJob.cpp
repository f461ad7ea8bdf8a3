#include "HelpDeskJob.h"
#include "CertificateQuestion.h"
#include "CompletionWindow.h"
#include "Text.h"
#include "TicketTable.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>

namespace
{
/// Every byte there is, once: what a text would not survive.
Attachment makeSample()
{
    Attachment sample{std::string(256, '\0'), L"every byte.bin"};
    std::iota(sample.data.begin(), sample.data.end(), '\0');
    return sample;
}

Attachment readAttachment(const std::string& file)
{
    const auto path = std::filesystem::u8path(file);
    std::ifstream in(path, std::ios::binary);
    if (!std::filesystem::is_regular_file(path) || !in) {
        throw std::runtime_error("cannot read the file " + file);
    }
    const std::string name = path.filename().u8string();
    if (name.find('"') != std::string::npos) {
        throw std::runtime_error(
            "the file's name must not hold a double quote: the library does not escape it");
    }
    return {{std::istreambuf_iterator<char>(in), {}}, toWide(name)};
}

class HelpDeskJob
{
public:
    explicit HelpDeskJob(const Options& options)
        : m_ticket{toWide(options.client.empty() ? options.asset : options.client),
                   options.client.empty() ? VantryType::Asset : VantryType::Client, toWide(options.subject),
                   toWide(options.detail)},
          m_note{L"", toWide(options.note), options.workTime, !options.isNoteHidden},
          m_attachment(options.file.empty() ? makeSample() : readAttachment(options.file)),
          m_certificateQuestion(options.certificate)
    {
        SetEndPoint(toWide(options.endPoint));
        SetCredentials(toWide(options.userName), toWide(options.password));
        SetValidateCertificateCallback(
            [this](const CERT_CONTEXT& certificate) { return m_certificateQuestion.isTrusted(certificate); });
        if (options.isAsynchronous) {
            m_window.emplace();
            SetHWND(m_window->handle());
        }
    }

    ~HelpDeskJob()
    {
        SetHWND(nullptr);
        SetValidateCertificateCallback({});
    }

    HelpDeskJob(const HelpDeskJob&) = delete;
    HelpDeskJob(HelpDeskJob&&) = delete;
    HelpDeskJob& operator=(const HelpDeskJob&) = delete;
    HelpDeskJob& operator=(HelpDeskJob&&) = delete;

    bool run()
    {
        if (!perform("open the session", 200, [] { CreateSession(); })) {
            return false;
        }
        std::cout << "Session opened." << std::endl;
        const bool isDone = createTicket() && saveNote() && attachFile() && listTickets();
        const bool isClosed = perform("close the session", 200, [] { CloseSession(); });
        if (isClosed) {
            std::cout << "Session closed." << std::endl;
        }
        return isDone && isClosed;
    }

private:
    bool createTicket()
    {
        if (!perform("create the ticket", 201, [this] { CreateTicket(m_ticket); })) {
            return false;
        }
        m_note.jobTicketId = GetCreatedTicketID();
        std::cout << "Ticket " << toTerminal(m_note.jobTicketId)
                  << " created: " << toTerminal(m_ticket.subject) << std::endl;
        return true;
    }

    bool saveNote()
    {
        if (!perform("save the note", 201, [this] { SaveTechNote(m_note); })) {
            return false;
        }
        std::cout << "Note saved: " << toTerminal(m_note.noteText) << std::endl;
        return true;
    }

    bool attachFile()
    {
        if (!perform("attach the file", 201, [this] { SaveAttachment(m_attachment); })) {
            return false;
        }
        std::cout << "File attached: " << toTerminal(m_attachment.fileName) << ", "
                  << m_attachment.data.size() << " bytes" << std::endl;
        return true;
    }

    bool listTickets()
    {
        if (!perform("list the tickets", 200,
                     [this] { RequestTicketList(m_ticket.entityId, m_ticket.entityType); })) {
            return false;
        }
        const auto& tickets = GetTicketList();
        std::cout << "Tickets of the " << (m_ticket.entityType == VantryType::Client ? "client " : "asset ")
                  << toTerminal(m_ticket.entityId) << ": " << tickets.size() << std::endl;
        printTickets(std::cout, tickets);
        std::cout << std::flush;
        return true;
    }

    /// Runs one operation to its end and tells whether it succeeded. With a window its call returns at once,
    /// and the results may be read when the window has been told.
    bool perform(const std::string& task, std::int32_t successCode, const std::function<void()>& operation)
    {
        operation();
        if (m_window) {
            m_window->waitForOperation();
        }
        const ResponseStatus& response = GetLastResponse();
        if (response.httpStatusCode == successCode) {
            return true;
        }
        std::cerr << "Could not " << task << ": " << response.httpStatusCode << ' '
                  << toTerminal(response.errorMessage) << std::endl;
        return false;
    }

    TicketCreationInformation m_ticket;
    TechNote m_note;
    Attachment m_attachment;
    CertificateQuestion m_certificateQuestion;
    std::optional<CompletionWindow> m_window;
};
} // namespace

bool doHelpDeskJob(const Options& options)
{
    return HelpDeskJob(options).run();
}
