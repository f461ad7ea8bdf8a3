#include "Addresses.h"
#include "CompletionSignal.h"
#include "Dispatch.h"
#include "GuardedCall.h"
#include "ModuleObjects.h"
#include "Operation.h"
#include "RequestContent.h"
#include "ResponseHandling.h"
#include "RestText.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <stdexcept>

using Platform::fromRestText;
using Platform::toRestText;
using web::uri;
using web::http::http_response;
using web::http::methods;
using web::http::status_codes;

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
                // The text that the log has for a cookie that cannot be cut at its first attribute. Such a
                // cookie ends as a failure, not as a session.
                throw std::out_of_range("invalid string position");
            }
            auto cookie = fromRestText(header.second.substr(0, end));
            VantryIntegrationApi::Utils::requireOneLine(cookie, "session cookie"); // it goes back in a header
            return cookie;
        }
    }
    return {};
}
} // namespace

namespace VantryIntegrationApi
{
void CVantryApi::wrpCreateSession()
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpCreateSession");
    dispatch("CreateSession", &CVantryApi::createSession);
}

void CVantryApi::createSession()
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::createSession");
    const auto requestUri = prepared(log, [&] {
        auto address = addressWithCredentials(U("/Session"));
        LogUsedUrl(address, log.name());
        return address;
    });
    if (!requestUri || !mayBeSent(log)) {
        return;
    }
    m_lastResponse =
        Utils::safe_CallMethod([&] { return unsafe_sendRequest_CreateSession(*requestUri); }).status;
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(log, g_requestErrorText);
        return;
    }
    LUMO_LINE(m_logger, Info,
              L"Session id is: " << m_session.m_sessionKey << L" Cookie id is: "
                                 << m_session.m_sessionCookie);
}

void CVantryApi::wrpCloseSession()
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpCloseSession");
    dispatch("CloseSession", &CVantryApi::closeSession);
}

void CVantryApi::closeSession()
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::closeSession");
    const auto requestUri = prepared(log, [&] {
        auto address =
            web::uri_builder()
                .set_path(U("/Session"))
                .append_query(U("sessionKey=") + Utils::minimallyEncoded(m_session.m_sessionKey), false)
                .to_uri();
        LogUsedUrl(address, log.name());
        return address;
    });
    if (!requestUri || !mayBeSent(log)) {
        return;
    }
    m_lastResponse =
        Utils::safe_CallMethod([&] { return unsafe_sendRequest_CloseSession(*requestUri); }).status;
    if (m_lastResponse.httpStatusCode != status_codes::OK) {
        LUMO_ERROR(log, g_requestErrorText);
    }
}

ServerAnswer CVantryApi::unsafe_sendRequest_CreateSession(const uri& requestUri)
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest_CreateSession");
    web::http::http_request request(methods::GET);
    request.set_request_uri(requestUri);

    std::wstring cookie;
    auto answer = exchange(log, Utils::serverAddress(m_endPoint), request, [&cookie](auto& response) {
        cookie = setCookie(response);
        return Utils::handleResponse(response);
    });
    if (!answer.body.is_null()) {
        auto key = Utils::jsonText(Utils::member(answer.body, U("sessionKey")));
        boost::trim_if(key, boost::is_any_of(L" \""));
        m_session = {std::move(key), std::move(cookie)};
    }
    logAnswer(log, answer.body);
    return answer;
}

ServerAnswer CVantryApi::unsafe_sendRequest_CloseSession(const uri& requestUri)
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest_CloseSession");
    web::http::http_request request(methods::DEL);
    request.set_request_uri(requestUri);
    request.headers()[U("Cookie")] = toRestText(m_session.m_sessionCookie);

    auto answer = exchange(log, Utils::serverAddress(m_endPoint), request, &Utils::handleResponse);
    logAnswer(log, answer.body);
    return answer;
}
} // namespace VantryIntegrationApi
