#include "CompletionSignal.h"
#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <stdexcept>

using Platform::fromRestText;
using Platform::toRestText;
using web::uri;
using web::http::http_response;
using web::http::methods;
using web::http::status_codes;

namespace json = web::json;

namespace
{
/// Name and value of the cookie that the server set; empty where it set none.
/// The header's name is compared with regard to case.
std::wstring setCookie(const http_response& response)
{
    for (const auto& header : response.headers()) {
        if (header.first == U("Set-Cookie")) {
            const auto end = header.second.find(U(';'));
            if (end == utility::string_t::npos) {
                throw std::out_of_range("invalid string position");
            }
            return fromRestText(header.second.substr(0, end));
        }
    }
    return {};
}
} // namespace

namespace VantryIntegrationApi
{
void CVantryApi::createSession()
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::createSession");
    uri requestUri;
    const bool prepared = prepare(lumoName, [&] {
        requestUri = web::uri_builder()
                         .set_path(U("/Session"))
                         .append_query(Utils::credentialQuery(m_userName, m_password), false)
                         .to_uri();
        LogUsedUrl(fromRestText(requestUri.to_string()), lumoName);
    });
    if (!prepared || !validateOrStop(lumoName)) {
        return;
    }
    LUMO_DEBUG(L"Going to send request to server");
    m_lastResponse = Utils::safe_CallMethod([&] { return unsafe_sendRequest_CreateSession(requestUri); });
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(g_requestErrorText);
        return;
    }
    LOG4CXX_INFO(m_logger, L"Session id is: " << m_session.m_sessionKey << L" Cookie id is: "
                                              << m_session.m_sessionCookie);
}

void CVantryApi::closeSession()
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::closeSession");
    uri requestUri;
    const bool prepared = prepare(lumoName, [&] {
        requestUri = web::uri_builder()
                         .set_path(U("/Session"))
                         .append_query(U("sessionKey=") + Utils::rawQueryText(m_session.m_sessionKey), false)
                         .to_uri();
        LogUsedUrl(fromRestText(requestUri.to_string()), lumoName);
    });
    if (!prepared || !validateOrStop(lumoName)) {
        return;
    }
    LUMO_DEBUG(L"Going to send request to server");
    m_lastResponse = Utils::safe_CallMethod([&] { return unsafe_sendRequest_CloseSession(requestUri); });
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(g_requestErrorText);
    }
}

ResponseStatus CVantryApi::unsafe_sendRequest_CreateSession(const uri& requestUri)
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest_CreateSession");
    web::http::http_request request(methods::GET);
    request.set_request_uri(requestUri);

    std::wstring cookie;
    json::value answer;
    const auto reader = [&cookie](http_response& response) {
        cookie = setCookie(response);
        return Utils::handleResponse(response);
    };
    auto status = exchange(lumoName, uri(toRestText(m_endPoint)), request, reader, answer);
    if (!answer.is_null()) {
        auto key = Utils::jsonText(Utils::member(answer, U("sessionKey")));
        boost::trim_if(key, boost::is_any_of(L" \""));
        m_session = {std::move(key), std::move(cookie)};
        LUMO_INFO(L"Server's response: " << Utils::jsonText(answer));
    }
    return status;
}

ResponseStatus CVantryApi::unsafe_sendRequest_CloseSession(const uri& requestUri)
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest_CloseSession");
    web::http::http_request request(methods::DEL);
    request.set_request_uri(requestUri);
    request.headers()[U("Cookie")] = toRestText(m_session.m_sessionCookie);

    json::value answer;
    auto status = exchange(lumoName, uri(toRestText(m_endPoint)), request, &Utils::handleResponse, answer);
    if (!answer.is_null()) {
        LUMO_INFO(L"Server's response: " << Utils::jsonText(answer));
    }
    return status;
}
} // namespace VantryIntegrationApi
