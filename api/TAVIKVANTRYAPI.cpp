#include "TAVIKVANTRYAPI.h"

#include "VantryApi.h"

using VantryIntegrationApi::CVantryApi;

// The module's objects: made in this order when it is loaded, destroyed in the reverse when it is unloaded.
// The order holds within one file only, which is why the class's own logger and text stand here and not with
// it.
namespace
{
log4cxx::LoggerPtr moduleLogger = log4cxx::Logger::getLogger(L"TAVIKVANTRYAPI");
CVantryApi client;
} // namespace

log4cxx::LoggerPtr CVantryApi::m_logger = log4cxx::Logger::getLogger(L"CVantryApi");

const std::wstring VantryIntegrationApi::g_requestErrorText =
    L"We've got an error during request. See logged status code and message for more details.";

void SetEndPoint(const std::wstring& endPoint)
{
    const LumoLogBlock block(moduleLogger, "SetEndPoint");
    client.setEndPoint(endPoint);
}

void SetCredentials(const std::wstring& userName, const std::wstring& password)
{
    const LumoLogBlock block(moduleLogger, "SetCredentials");
    client.setCredentials(userName, password);
}

void SetValidateCertificateCallback(ValidateCertificateCallback callback)
{
    const LumoLogBlock block(moduleLogger, "SetValidateCertificateCallback");
    // a copy: the argument ends after the scope log
    client.setValidateCertificateCallback(callback); // NOLINT(performance-unnecessary-value-param)
}

void SetHWND(HWND window)
{
    const LumoLogBlock block(moduleLogger, "SetHWND");
    client.setHWND(window);
}

const ResponseStatus& GetLastResponse()
{
    const LumoLogBlock block(moduleLogger, "GetLastResponse");
    return client.GetLastResponse();
}

const std::wstring& GetCreatedTicketID()
{
    const LumoLogBlock block(moduleLogger, "GetCreatedTicketID");
    return client.GetCreatedTicketID();
}

const std::vector<TicketListEntry>& GetTicketList()
{
    const LumoLogBlock block(moduleLogger, "GetTicketList");
    return client.GetTicketList();
}

void SaveTechNote(const TechNote& techNote)
{
    LUMO_LINE(moduleLogger, Info, L"Saving tech note.");
    client.wrpSaveTechNote(techNote);
}

void SaveAttachment(const Attachment& attachment)
{
    LUMO_LINE(moduleLogger, Info, L"Saving attachment.");
    client.wrpSaveAttachment(attachment);
}

void CreateSession()
{
    LUMO_LINE(moduleLogger, Info, L"Creating session.");
    client.wrpCreateSession();
}

void CloseSession()
{
    LUMO_LINE(moduleLogger, Info, L"Closing session.");
    client.wrpCloseSession();
}

void RequestTicketList(const std::wstring& entityId, VantryType type)
{
    LUMO_LINE(moduleLogger, Info, L"Requesting ticket list");
    client.wrpRequestTicketList(entityId, type);
}

void CreateTicket(const TicketCreationInformation& ticket)
{
    LUMO_LINE(moduleLogger, Info, L"Creating ticket.");
    client.wrpCreateTicket(ticket);
}
