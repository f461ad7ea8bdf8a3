#include "TAVIKVANTRYAPI.h"

#include "VantryApi.h"

using VantryIntegrationApi::CVantryApi;

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
    LOG4CXX_INFO(moduleLogger, L"Saving tech note.");
    client.wrpSaveTechNote(techNote);
}

void SaveAttachment(const Attachment& attachment)
{
    LOG4CXX_INFO(moduleLogger, L"Saving attachment.");
    client.wrpSaveAttachment(attachment);
}

void CreateSession()
{
    LOG4CXX_INFO(moduleLogger, L"Creating session.");
    client.wrpCreateSession();
}

void CloseSession()
{
    LOG4CXX_INFO(moduleLogger, L"Closing session.");
    client.wrpCloseSession();
}

void RequestTicketList(const std::wstring& entityId, VantryType type)
{
    LOG4CXX_INFO(moduleLogger, L"Requesting ticket list");
    client.wrpRequestTicketList(entityId, type);
}

void CreateTicket(const TicketCreationInformation& ticket)
{
    LOG4CXX_INFO(moduleLogger, L"Creating ticket.");
    client.wrpCreateTicket(ticket);
}
