#include "Module.h"
#include "VantryApi.h"

#include <thread>

namespace VantryIntegrationApi
{
template <typename... Parameters>
void CVantryApi::dispatch(const char* name, void (CVantryApi::*operation)(Parameters...),
                          const std::decay_t<Parameters>&... arguments)
{
    if (m_hwnd == nullptr) {
        LOG4CXX_TRACE(m_logger, "Sync. " << name << "()");
        (this->*operation)(arguments...);
        return;
    }
    LOG4CXX_TRACE(m_logger, "Async. " << name << "()");
    std::thread([this, operation, arguments..., module = Platform::ModuleReference()] {
        try {
            (this->*operation)(arguments...);
        } catch (...) {
            throw; // ends the process, but caught once, so that the stack is unwound and the window told
                   // before
        }
    }).detach();
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
