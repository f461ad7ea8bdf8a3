#include "CompletionSignal.h"
#include "Dispatch.h"
#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

using Platform::toRestText;
using web::http::status_codes;

namespace json = web::json;

namespace Utils = VantryIntegrationApi::Utils;

namespace
{
json::value ticketBody(const TicketCreationInformation& ticket)
{
    auto body = json::value::object();
    body[U("subject")] = json::value::string(toRestText(ticket.subject));
    body[U("detail")] = json::value::string(toRestText(ticket.detail));
    if (ticket.entityType == VantryType::Client) {
        body[U("clientReporter")] = Utils::entity(U("Client"), ticket.entityId);
    } else {
        body[U("assets")] = json::value::array({Utils::entity(U("Asset"), ticket.entityId)});
    }
    return body;
}
} // namespace

namespace VantryIntegrationApi
{
void CVantryApi::wrpCreateTicket(const TicketCreationInformation& ticket)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpCreateTicket");
    m_lastResponse = ResponseStatus();
    m_createdTicketId.clear();
    dispatch("CreateTicket", &CVantryApi::createTicket, ticket);
}

void CVantryApi::createTicket(const TicketCreationInformation& ticket)
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::createTicket");
    json::value body;
    const auto prepareRequest = [&] {
        auto requestUri = addressWithCredentials(U("/Tickets"));
        logUsedUrl(requestUri, lumoName);
        LUMO_INFO(L"Preparing json based on input information");
        body = ticketBody(ticket);
        return requestUri;
    };
    Utils::JsonAnswer answer;
    if (!performPost(lumoName, prepareRequest, body, answer) ||
        m_lastResponse.httpStatusCode != status_codes::Created) {
        return;
    }
    if (answer->is_null()) {
        LUMO_ERROR(L"Answer form the server is null");
        return;
    }
    m_createdTicketId = Utils::jsonText(Utils::member(*answer, U("id")));
    LUMO_INFO(L"Returning created ticket ID: " << m_createdTicketId);
}
} // namespace VantryIntegrationApi
