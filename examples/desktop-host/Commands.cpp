#include "Commands.h"
#include "Dialogs.h"
#include "Failure.h"
#include "FileToAttach.h"
#include "MainWindow.h"
#include "resource.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace
{
/// `RequestTicketList` puts the id into an address as it is. One that an address cannot carry throws on the
/// operation's own thread, which ends the process: it has to be kept out here.
bool fitsAddress(const std::wstring& id)
{
    const auto* const unreserved = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    return !id.empty() && id.find_first_not_of(unreserved) == std::wstring::npos;
}

VantryType entityType(const Settings& settings)
{
    return settings.isAsset ? VantryType::Asset : VantryType::Client;
}

std::wstring entityText(const Settings& settings)
{
    return (settings.isAsset ? L"asset " : L"client ") + settings.entityId;
}

/// Of the endpoint: host and port.
std::wstring serverName(std::wstring endPoint)
{
    const auto scheme = endPoint.find(L"://");
    endPoint.erase(0, scheme == std::wstring::npos ? 0 : scheme + 3);
    endPoint.resize(std::min(endPoint.find_first_of(L"/?#"), endPoint.size()));
    return endPoint.substr(endPoint.rfind(L'@') + 1); // all if there is none
}
} // namespace

Commands::Commands(MainWindow& window) : m_window(window)
{
    SetHWND(window.handle());
    // Runs on the operation's thread. SendMessageW waits for the answer, which is 0 if the window has gone.
    SetValidateCertificateCallback([handle = window.handle()](const CERT_CONTEXT& certificate) {
        const CertificateInfo info = readCertificate(certificate);
        return SendMessageW(handle, WM_ASK_ABOUT_CERTIFICATE, 0, reinterpret_cast<LPARAM>(&info)) != 0;
    });
}

bool Commands::isAllowed(int command) const
{
    if (isRunning()) {
        return false;
    }
    switch (command) {
    case IDC_OPEN_SESSION:
        return !m_isSessionOpen;
    case IDC_ADD_NOTE:
        return m_isSessionOpen && !m_window.selectedTicket().empty();
    case IDC_ATTACH_FILE:
        return m_isSessionOpen && !m_notedTicket.empty();
    default:
        return m_isSessionOpen;
    }
}

void Commands::openSession()
{
    const Settings settings = m_window.settings();
    SetEndPoint(settings.endPoint);
    SetCredentials(settings.userName, settings.password);
    Operation operation{L"Opening the session…", L"The session could not be opened", 200,
                        [] { CreateSession(); }};
    operation.succeeded = [this, settings] {
        m_isSessionOpen = true;
        m_window.showStatus(L"The session is open.");
        if (!settings.isTrial) {
            rememberServer(settings);
        }
    };
    operation.next = [this, hasEntity = fitsAddress(settings.entityId)] {
        if (hasEntity) {
            listTickets({});
        }
    };
    run(std::move(operation));
}

/// Whatever the server says to it, the session is over for this program: it could not be used any more.
void Commands::closeSession()
{
    const auto forget = [this](const wchar_t* status) {
        m_isSessionOpen = false;
        m_notedTicket.clear();
        m_window.showTickets({}, {});
        m_window.showStatus(status);
    };
    Operation operation{L"Closing the session…",
                        L"The session was given up, but could not be closed on the server", 200,
                        [] { CloseSession(); }};
    operation.succeeded = [forget] { forget(L"The session is closed."); };
    operation.failed = [forget] { forget(L"The session was given up."); };
    run(std::move(operation));
}

void Commands::showTickets()
{
    if (checkEntity()) {
        listTickets(m_window.selectedTicket());
    }
}

void Commands::newTicket()
{
    if (!checkEntity()) {
        return;
    }
    const Settings settings = m_window.settings();
    auto ticket = enterTicket(m_window.handle(), L"New ticket of " + entityText(settings));
    if (!ticket) {
        return;
    }
    ticket->entityId = settings.entityId;
    ticket->entityType = entityType(settings);
    Operation operation{L"Creating the ticket…", L"The ticket could not be created", 201,
                        [ticket] { CreateTicket(*ticket); }};
    operation.next = [this] { listTickets(GetCreatedTicketID()); };
    run(std::move(operation));
}

void Commands::addNote()
{
    const std::wstring ticket = m_window.selectedTicket();
    auto note = enterNote(m_window.handle(), L"Note on ticket " + ticket);
    if (!note) {
        return;
    }
    note->jobTicketId = ticket;
    Operation operation{L"Saving the note…", L"The note could not be saved", 201,
                        [note] { SaveTechNote(*note); }};
    operation.succeeded = [this, ticket] {
        m_notedTicket = ticket;
        m_window.showStatus(L"The note on ticket " + ticket + L" is saved. Files go to this note.");
    };
    // The library keeps the note before, and files would go there: none may follow.
    operation.failed = [this] { m_notedTicket.clear(); };
    run(std::move(operation));
}

void Commands::attachChosenFiles()
{
    attachFiles(chooseFiles(m_window.handle()));
}

void Commands::attachFiles(std::deque<std::filesystem::path> files)
{
    if (isAllowed(IDC_ATTACH_FILE)) {
        m_filesToAttach = std::move(files);
        attachNext();
    }
}

bool Commands::checkEntity()
{
    if (fitsAddress(m_window.settings().entityId)) {
        return true;
    }
    m_window.showWrongEntry(IDC_ENTITY_ID,
                            L"The id of a client or asset consists of the letters A to Z, digits and -._~.");
    return false;
}

void Commands::listTickets(const std::wstring& selectedId)
{
    const Settings settings = m_window.settings();
    Operation operation{L"Fetching the tickets…", L"The tickets could not be fetched", 200,
                        [settings] { RequestTicketList(settings.entityId, entityType(settings)); }};
    operation.succeeded = [this, settings, selectedId] {
        const auto& tickets = GetTicketList();
        m_window.showTickets(tickets, selectedId);
        m_window.showStatus(L"Tickets of " + entityText(settings) + L": " + std::to_wstring(tickets.size()));
    };
    operation.failed = [this] { m_window.showTickets({}, {}); };
    run(std::move(operation));
}

/// One file is one operation. The first failure ends the row; a file that cannot be read is one, too.
void Commands::attachNext()
{
    if (m_filesToAttach.empty()) {
        return;
    }
    const auto path = m_filesToAttach.front();
    m_filesToAttach.pop_front();
    const std::wstring name = path.filename().native();
    Operation operation{L"Attaching the file " + name + L"…", L"The file " + name + L" could not be attached",
                        201, [path] { SaveAttachment(readFile(path)); }};
    operation.succeeded = [this, name] {
        m_window.showStatus(L"The file " + name + L" is attached to the note on ticket " + m_notedTicket +
                            L".");
    };
    operation.failed = [this] { m_filesToAttach.clear(); };
    operation.next = [this] { attachNext(); };
    run(std::move(operation));
}

bool Commands::isTrusted(const CertificateInfo& certificate)
{
    if (m_trusted.count(certificate.fingerprint) != 0) {
        return true;
    }
    if (m_isRefusing ||
        !askAboutCertificate(m_window.handle(), serverName(m_window.settings().endPoint), certificate)) {
        return false;
    }
    m_trusted.insert(certificate.fingerprint);
    return true;
}

void Commands::refuseCertificates()
{
    m_isRefusing = true;
    HWND const question = GetLastActivePopup(m_window.handle());
    if (question != m_window.handle()) {
        PostMessageW(question, WM_COMMAND, IDCANCEL, 0);
    }
}

void Commands::run(Operation operation)
{
    m_running = std::move(operation);
    m_window.showBusy(m_running->progress);
    try {
        m_running->start();
    } catch (const std::exception& error) {
        // No thread was started, so no message will come, and there is no new result to read.
        end({notStarted, describe(error)});
    }
}

void Commands::finished()
{
    if (isRunning()) { // any program can post a message of that number
        end(GetLastResponse());
    }
}

/// The operation is over before anything else happens: what follows on it may start another one, or show a
/// dialog, which lets the window's other messages in.
void Commands::end(const ResponseStatus& response)
{
    const Operation ended = *std::exchange(m_running, std::nullopt);
    const ResponseStatus outcome = response; // the library's own is overwritten by the next operation
    const bool isSuccess = outcome.httpStatusCode == ended.successCode;
    const auto& takeOver = isSuccess ? ended.succeeded : ended.failed;
    if (takeOver) {
        takeOver();
    }
    if (isSuccess && ended.next && !m_isWrappingUp) {
        ended.next();
    }
    if (!isRunning()) {
        m_window.showIdle();
    }
    if (!isSuccess && !m_isWrappingUp) {
        m_window.showFailure(ended.failure, outcome);
    }
}
