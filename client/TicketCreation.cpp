#include "CompletionSignal.h"
#include "Dispatch.h"
#include "Operation.h"
#include "RequestContent.h"
#include "ResponseHandling.h"
#include "RestText.h"

using Platform::fromRestText;
using Platform::toRestText;
using web::http::methods;
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
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::createTicket");
    json::value body;
    const auto requestUri = prepared(log, [&] {
        auto address = addressWithCredentials(U("/Tickets"));
        LogUsedUrl(address, log.name());
        LUMO_INFO(log, L"Preparing json based on input information");
        body = ticketBody(ticket);
        return address;
    });
    if (!requestUri || !mayBeSent(log)) {
        return;
    }
    const auto answer = sendRequest_ProvideServerResponse(*requestUri, fromRestText(methods::POST), body);
    m_lastResponse = answer.status;
    if (m_lastResponse.httpStatusCode != status_codes::Created) {
        return;
    }
    if (answer.body.is_null()) {
        LUMO_ERROR(log, L"Answer form the server is null");
        return;
    }
    readAnswer(log, [&] {
        m_createdTicketId = Utils::jsonText(Utils::member(answer.body, U("id")));
        LUMO_INFO(log, L"Returning created ticket ID: " << m_createdTicketId);
    });
}
} // namespace VantryIntegrationApi
