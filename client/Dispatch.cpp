#include "Module.h"
#include "VantryApi.h"

#include <tuple>

namespace VantryIntegrationApi
{
template <typename... Parameters>
void CVantryApi::dispatch(const char* name, void (CVantryApi::*operation)(Parameters...),
                          const std::decay_t<Parameters>&... arguments)
{
    if (m_hwnd == nullptr) {
        LUMO_LINE(m_logger, Trace, "Sync. " << name << "()");
        (this->*operation)(arguments...);
        return;
    }
    LUMO_LINE(m_logger, Trace, "Async. " << name << "()");
    Platform::startThread([this, operation, copies = std::tuple<std::decay_t<Parameters>...>(arguments...)] {
        try {
            std::apply([&](const auto&... copied) { (this->*operation)(copied...); }, copies);
        } catch (...) {
            // It ends the process all the same. But only an exception that is caught is sure to unwind the
            // stack first, and so to have the window told.
            throw;
        }
    });
}

void CVantryApi::wrpSaveTechNote(const TechNote& techNote)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpSaveTechNote");
    dispatch("SaveTechNote", &CVantryApi::saveTechNote, techNote);
}

void CVantryApi::wrpSaveAttachment(const Attachment& attachment)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpSaveAttachment");
    dispatch("SaveAttachment", &CVantryApi::saveAttachment, attachment);
}

void CVantryApi::wrpCreateSession()
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpCreateSession");
    dispatch("CreateSession", &CVantryApi::createSession);
}

void CVantryApi::wrpCloseSession()
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpCloseSession");
    dispatch("CloseSession", &CVantryApi::closeSession);
}

void CVantryApi::wrpRequestTicketList(const std::wstring& entityId, VantryType type)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpRequestTicketList");
    dispatch("RequestTicketList", &CVantryApi::requestTicketList, entityId, type);
}

void CVantryApi::wrpCreateTicket(const TicketCreationInformation& ticket)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpCreateTicket");
    m_lastResponse = ResponseStatus();
    m_createdTicketId.clear();
    dispatch("CreateTicket", &CVantryApi::createTicket, ticket);
}
} // namespace VantryIntegrationApi
