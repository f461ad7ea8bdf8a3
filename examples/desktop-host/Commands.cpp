#include "Commands.h"
#include "EntryDialogs.h"
#include "FileToAttach.h"
#include "resource.h"

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
} // namespace

Commands::Commands(CommandsView& view, Operations& operations)
    : m_view(view), m_operations(operations),
      m_certificateQuestion(std::make_shared<CertificateQuestion>(view.handle()))
{
    SetHWND(view.handle());
    SetValidateCertificateCallback([question = m_certificateQuestion](const CERT_CONTEXT& certificate) {
        return question->isTrusted(certificate);
    });
}

Commands::~Commands()
{
    SetValidateCertificateCallback({});
    SetHWND(nullptr);
}

bool Commands::isAllowed(int command) const
{
    if (m_operations.isRunning()) {
        return false;
    }
    switch (command) {
    case IDC_OPEN_SESSION:
        return !m_isSessionOpen;
    case IDC_ADD_NOTE:
        return m_isSessionOpen && !m_view.selectedTicket().empty();
    case IDC_ATTACH_FILE:
        return m_isSessionOpen && !m_notedTicket.empty();
    default:
        return m_isSessionOpen;
    }
}

void Commands::openSession()
{
    const Settings settings = m_view.settings();
    SetEndPoint(settings.endPoint);
    SetCredentials(settings.userName, settings.password);
    Operation operation;
    operation.progress = L"Opening the session…";
    operation.failure = L"The session could not be opened";
    operation.successCode = 200;
    operation.start = [] { CreateSession(); };
    operation.succeeded = [this, settings] {
        m_isSessionOpen = true;
        m_view.showStatus(L"The session is open.");
        if (!settings.isTrial) {
            rememberServer(settings);
        }
    };
    operation.next = [this, hasEntity = fitsAddress(settings.entityId)] {
        if (hasEntity) {
            listTickets({});
        }
    };
    m_operations.run(std::move(operation));
}

/// Whatever the server says to it, the session is over for this program: it could not be used any more.
void Commands::closeSession()
{
    const auto forget = [this](const wchar_t* status) {
        m_isSessionOpen = false;
        m_notedTicket.clear();
        m_view.showTickets({}, {});
        m_view.showStatus(status);
    };
    Operation operation;
    operation.progress = L"Closing the session…";
    operation.failure = L"The session was given up, but could not be closed on the server";
    operation.successCode = 200;
    operation.start = [] { CloseSession(); };
    operation.succeeded = [forget] { forget(L"The session is closed."); };
    operation.failed = [forget] { forget(L"The session was given up."); };
    m_operations.run(std::move(operation));
}

void Commands::showTickets()
{
    if (checkEntity()) {
        listTickets(m_view.selectedTicket());
    }
}

void Commands::newTicket()
{
    if (!checkEntity()) {
        return;
    }
    const Settings settings = m_view.settings();
    auto ticket = enterTicket(m_view.handle(), L"New ticket of " + entityText(settings));
    if (!ticket) {
        return;
    }
    ticket->entityId = settings.entityId;
    ticket->entityType = entityType(settings);
    Operation operation;
    operation.progress = L"Creating the ticket…";
    operation.failure = L"The ticket could not be created";
    operation.successCode = 201;
    operation.start = [ticket] { CreateTicket(*ticket); };
    operation.next = [this] { listTickets(GetCreatedTicketID()); };
    m_operations.run(std::move(operation));
}

void Commands::addNote()
{
    const std::wstring ticket = m_view.selectedTicket();
    auto note = enterNote(m_view.handle(), L"Note on ticket " + ticket);
    if (!note) {
        return;
    }
    note->jobTicketId = ticket;
    Operation operation;
    operation.progress = L"Saving the note…";
    operation.failure = L"The note could not be saved";
    operation.successCode = 201;
    operation.start = [note] { SaveTechNote(*note); };
    operation.succeeded = [this, ticket] {
        m_notedTicket = ticket;
        m_view.showStatus(L"The note on ticket " + ticket + L" is saved. Files go to this note.");
    };
    // The library keeps the note before, and files would go there: none may follow.
    operation.failed = [this] { m_notedTicket.clear(); };
    m_operations.run(std::move(operation));
}

void Commands::attachFiles(std::deque<std::filesystem::path> files)
{
    m_filesToAttach = std::move(files);
    attachNext();
}

bool Commands::checkEntity()
{
    if (fitsAddress(m_view.settings().entityId)) {
        return true;
    }
    m_view.showWrongEntry(IDC_ENTITY_ID,
                          L"The id of a client or asset consists of the letters A to Z, digits and -._~.");
    return false;
}

void Commands::listTickets(const std::wstring& selectedId)
{
    const Settings settings = m_view.settings();
    Operation operation;
    operation.progress = L"Fetching the tickets…";
    operation.failure = L"The tickets could not be fetched";
    operation.successCode = 200;
    operation.start = [settings] { RequestTicketList(settings.entityId, entityType(settings)); };
    operation.succeeded = [this, settings, selectedId] {
        const auto& tickets = GetTicketList();
        m_view.showTickets(tickets, selectedId);
        m_view.showStatus(L"Tickets of " + entityText(settings) + L": " + std::to_wstring(tickets.size()));
    };
    operation.failed = [this] { m_view.showTickets({}, {}); };
    m_operations.run(std::move(operation));
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
    Operation operation;
    operation.progress = L"Attaching the file " + name + L"…";
    operation.failure = L"The file " + name + L" could not be attached";
    operation.successCode = 201;
    operation.start = [path] { SaveAttachment(readFile(path)); };
    operation.succeeded = [this, name] {
        m_view.showStatus(L"The file " + name + L" is attached to the note on ticket " + m_notedTicket +
                          L".");
    };
    operation.failed = [this] { m_filesToAttach.clear(); };
    operation.next = [this] { attachNext(); };
    m_operations.run(std::move(operation));
}
