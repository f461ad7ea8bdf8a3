#include "CompletionSignal.h"
#include "Dispatch.h"
#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

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
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::requestTicketList");
    m_ticketList.clear();
    web::uri_builder address(U("/Tickets"));
    if (!prepare(lumoName, [&] { address.append_query(toRestText(qualifier(entityId, type)), false); })) {
        return;
    }
    // An identifier that an address cannot carry is refused here, before the credentials are in the address:
    // the exception, which leaves the operation, shows it.
    address.to_uri();
    const auto prepareRequest = [&] {
        address.append_query(Utils::credentialQuery(m_userName, m_password), false);
        auto requestUri = address.to_uri();
        logUsedUrl(requestUri, lumoName);
        return requestUri;
    };
    Utils::JsonAnswer answer;
    if (!perform(lumoName, prepareRequest, [&](const web::uri& requestUri) {
            // Once more: the host's certificate callback has run since, and may have listed tickets itself.
            m_ticketList.clear();
            return sendRequest_ProvideServerResponse(requestUri, fromRestText(methods::GET), answer);
        })) {
        return;
    }
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(g_requestErrorText);
        return;
    }
    if (!answer->is_array()) {
        LUMO_LINE(m_logger, Error, L"Answer form the server is not an array");
        return;
    }
    const auto& tickets = answer->as_array();
    m_ticketList.reserve(tickets.size());
    for (const auto& ticket : tickets) {
        appendTicket(ticket);
    }
    LUMO_LINE(m_logger, Info, L"We received: " << m_ticketList.size() << L" tickets.");
}

void CVantryApi::appendTicket(const json::value& ticket)
{
    TicketListEntry entry;
    if (const auto& id = Utils::member(ticket, U("id")); !id.is_null()) {
        entry.id = Utils::jsonText(id);
    }
    const auto text = [&ticket](const utility::char_t* name) {
        const auto& value = Utils::member(ticket, name);
        return value.is_null() ? std::wstring() : fromRestText(value.as_string());
    };
    entry.name = text(U("shortSubject"));
    entry.detail = text(U("shortDetail"));
    entry.clientName = text(U("displayClient"));
    LUMO_LINE(m_logger, Info,
              L"From server's response we created a ticket: " << L"id: " << entry.id << L" Name: "
                                                              << entry.name << L" Detail: " << entry.detail
                                                              << L" ClientName: " << entry.clientName);
    m_ticketList.push_back(std::move(entry));
}
} // namespace VantryIntegrationApi
