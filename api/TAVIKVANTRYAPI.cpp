#include "TAVIKVANTRYAPI.h"

#include "ModuleObjects.h"

using VantryIntegrationApi::g_client;
using VantryIntegrationApi::g_moduleLogger;

// The host configures log4cxx, and with it these loggers.
log4cxx::LoggerPtr Lumo::loggerOf(const wchar_t* name)
{
    return log4cxx::Logger::getLogger(name);
}

void SetEndPoint(const std::wstring& endPoint)
{
    const LumoLogBlock block(g_moduleLogger, "SetEndPoint");
    g_client.setEndPoint(endPoint);
}

void SetCredentials(const std::wstring& userName, const std::wstring& password)
{
    const LumoLogBlock block(g_moduleLogger, "SetCredentials");
    g_client.setCredentials(userName, password);
}

void SetValidateCertificateCallback(ValidateCertificateCallback callback)
{
    const LumoLogBlock block(g_moduleLogger, "SetValidateCertificateCallback");
    // a copy: the argument ends after the scope log
    g_client.setValidateCertificateCallback(callback); // NOLINT(performance-unnecessary-value-param)
}

void SetHWND(HWND window)
{
    const LumoLogBlock block(g_moduleLogger, "SetHWND");
    g_client.setHWND(window);
}

const ResponseStatus& GetLastResponse()
{
    const LumoLogBlock block(g_moduleLogger, "GetLastResponse");
    return g_client.GetLastResponse();
}

const std::wstring& GetCreatedTicketID()
{
    const LumoLogBlock block(g_moduleLogger, "GetCreatedTicketID");
    return g_client.GetCreatedTicketID();
}

const std::vector<TicketListEntry>& GetTicketList()
{
    const LumoLogBlock block(g_moduleLogger, "GetTicketList");
    return g_client.GetTicketList();
}

void SaveTechNote(const TechNote& techNote)
{
    LUMO_LINE(g_moduleLogger, Info, L"Saving tech note.");
    g_client.wrpSaveTechNote(techNote);
}

void SaveAttachment(const Attachment& attachment)
{
    LUMO_LINE(g_moduleLogger, Info, L"Saving attachment.");
    g_client.wrpSaveAttachment(attachment);
}

void CreateSession()
{
    LUMO_LINE(g_moduleLogger, Info, L"Creating session.");
    g_client.wrpCreateSession();
}

void CloseSession()
{
    LUMO_LINE(g_moduleLogger, Info, L"Closing session.");
    g_client.wrpCloseSession();
}

void RequestTicketList(const std::wstring& entityId, VantryType type)
{
    LUMO_LINE(g_moduleLogger, Info, L"Requesting ticket list");
    g_client.wrpRequestTicketList(entityId, type);
}

void CreateTicket(const TicketCreationInformation& ticket)
{
    LUMO_LINE(g_moduleLogger, Info, L"Creating ticket.");
    g_client.wrpCreateTicket(ticket);
}
