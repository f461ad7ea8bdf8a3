#include "CompletionSignal.h"
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
void CVantryApi::requestTicketList(const std::wstring& entityId, VantryType type)
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::requestTicketList");
    web::uri_builder builder(U("/Tickets"));
    const bool prepared = prepare(lumoName, [&] {
        builder.append_query(toRestText(qualifier(entityId, type)), false);
        builder.append_query(Utils::credentialQuery(m_userName, m_password), false);
    });
    m_ticketList.clear();
    if (!prepared) {
        return;
    }
    const auto requestUri = builder.to_uri(); // refuses what the host's identifier cannot be in a URI
    LogUsedUrl(fromRestText(requestUri.to_string()), lumoName);
    if (!validateOrStop(lumoName)) {
        return;
    }
    LUMO_DEBUG(L"Going to send request to server");
    m_ticketList.clear();
    json::value answer;
    m_lastResponse = sendRequest_ProvideServerResponse(requestUri, fromRestText(methods::GET), answer);
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(g_requestErrorText);
        return;
    }
    if (!answer.is_array()) {
        LOG4CXX_ERROR(m_logger, L"Answer form the server is not an array");
        return;
    }
    for (const auto& ticket : answer.as_array()) {
        appendTicket(ticket);
    }
    LOG4CXX_INFO(m_logger, L"We received: " << m_ticketList.size() << L" tickets.");
}

void CVantryApi::appendTicket(const json::value& ticket)
{
    TicketListEntry entry;
    if (const auto id = Utils::member(ticket, U("id")); !id.is_null()) {
        entry.id = Utils::jsonText(id);
    }
    const auto text = [&ticket](const utility::char_t* name) {
        const auto value = Utils::member(ticket, name);
        return value.is_null() ? std::wstring() : fromRestText(value.as_string());
    };
    entry.name = text(U("shortSubject"));
    entry.detail = text(U("shortDetail"));
    entry.clientName = text(U("displayClient"));
    LOG4CXX_INFO(m_logger, L"From server's response we created a ticket: "
                               << L"id: " << entry.id << L" Name: " << entry.name << L" Detail: "
                               << entry.detail << L" ClientName: " << entry.clientName);
    m_ticketList.push_back(std::move(entry));
}
} // namespace VantryIntegrationApi
