#include "Addresses.h"
#include "CompletionSignal.h"
#include "Dispatch.h"
#include "ModuleObjects.h"
#include "Operation.h"
#include "ResponseHandling.h"
#include "RestText.h"

#include <sstream>

using Platform::fromRestText;
using Platform::toRestText;
using web::http::methods;
using web::http::status_codes;

namespace json = web::json;

namespace
{
std::wstring qualifier(const std::wstring& entityId, VantryType type)
{
    std::wostringstream text;
    text << L"qualifier=(" << (type == VantryType::Asset ? L"assets.assetId" : L"clientId") << L"="
         << entityId << L")";
    return text.str();
}
} // namespace

namespace VantryIntegrationApi
{
void CVantryApi::wrpRequestTicketList(const std::wstring& entityId, VantryType type)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpRequestTicketList");
    dispatch("RequestTicketList", &CVantryApi::requestTicketList, entityId, type);
}

void CVantryApi::requestTicketList(const std::wstring& entityId, VantryType type)
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::requestTicketList");
    m_ticketList.clear();
    const auto selection = prepared(log, [&] { return toRestText(qualifier(entityId, type)); });
    if (!selection) {
        return;
    }
    web::uri_builder address(U("/Tickets"));
    address.append_query(*selection, false);
    // An identifier that an address cannot carry is refused here, before the credentials are in the address:
    // the exception, which leaves the operation, shows it.
    address.to_uri();
    const auto requestUri = prepared(log, [&] {
        address.append_query(Utils::credentialQuery(m_userName, m_password), false);
        auto complete = address.to_uri();
        LogUsedUrl(complete, log.name());
        return complete;
    });
    if (!requestUri || !mayBeSent(log)) {
        return;
    }
    // Once more: the host's certificate callback has run since, and may have listed tickets itself.
    m_ticketList.clear();
    const auto answer = sendRequest_ProvideServerResponse(*requestUri, fromRestText(methods::GET));
    m_lastResponse = answer.status;
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(log, g_requestErrorText);
        return;
    }
    if (!answer.body.is_array()) {
        LUMO_LINE(m_logger, Error, L"Answer form the server is not an array");
        return;
    }
    readAnswer(log, [&] {
        const auto& tickets = answer.body.as_array();
        m_ticketList.reserve(tickets.size());
        for (const auto& ticket : tickets) {
            appendTicket(ticket);
        }
        LUMO_LINE(m_logger, Info, L"We received: " << m_ticketList.size() << L" tickets.");
    });
}

void CVantryApi::appendTicket(const json::value& ticket)
{
    TicketListEntry entry;
    if (ticket.is_object()) {
        // In their stored order: of a member that comes twice, the last that is not null counts.
        for (const auto& [name, value] : ticket.as_object()) {
            if (value.is_null()) {
                continue;
            }
            if (name == U("id")) {
                entry.id = Utils::jsonText(value);
            } else if (name == U("shortSubject")) {
                entry.name = fromRestText(value.as_string());
            } else if (name == U("shortDetail")) {
                entry.detail = fromRestText(value.as_string());
            } else if (name == U("displayClient")) {
                entry.clientName = fromRestText(value.as_string());
            }
        }
    }
    LUMO_LINE(m_logger, Info,
              L"From server's response we created a ticket: " << L"id: " << entry.id << L" Name: "
                                                              << entry.name << L" Detail: " << entry.detail
                                                              << L" ClientName: " << entry.clientName);
    m_ticketList.push_back(std::move(entry));
}
} // namespace VantryIntegrationApi
