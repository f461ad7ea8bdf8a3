#include "Addresses.h"
#include "BoundedExchange.h"
#include "GuardedCall.h"
#include "ModuleTexts.h"
#include "OwnOutcome.h"
#include "ResponseHandling.h"
#include "RestText.h"
#include "StringTable.h"
#include "VantryApi.h"

using Platform::fromRestText;
using Platform::toRestText;
using Platform::utf8OfRestText;
using web::uri;
using web::http::methods;

namespace json = web::json;

namespace VantryIntegrationApi
{
ServerAnswer CVantryApi::unsafe_sendRequest(const uri& requestUri, const std::wstring& method,
                                            const json::value& body)
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest");
    LUMO_INFO(log, L"We are sending request with method: " << method);

    web::http::http_request request(toRestText(method));
    request.set_request_uri(requestUri);
    if (request.method() == methods::POST || request.method() == methods::PUT) {
        auto text = body.serialize();
        LUMO_INFO(log, L"We are sending request with data: " << fromRestText(text));
        request.set_body(utf8OfRestText(std::move(text)), "text/plain");
        request.headers().set_content_type(U("application/json"));
    }

    auto answer = exchange(log, Utils::serverAddress(m_endPoint), request, [](auto& response) {
        const LumoLogBlock block(m_logger, L"Running request");
        return Utils::handleResponse(response);
    });
    logAnswer(log, answer.body);
    return answer;
}

ServerAnswer CVantryApi::exchange(const LumoFunction& log, const uri& base,
                                  const web::http::http_request& request, const BodyReader& reader)
{
    auto config = getClientConfig(false);
    const auto otherServer = requireAcceptedServer(config);
    BoundedExchange exchange(base, std::move(config), request, m_limits, &Utils::readsBody);
    LUMO_DEBUG(log, L"Going to run tasks and get results.");
    try {
        auto& response = exchange.wait(m_transferWatcher);
        ServerAnswer answer{{response.status_code(), fromRestText(response.reason_phrase())}, {}};
        answer.body = reader(response);
        return answer;
    } catch (const web::http::http_exception&) {
        if (!*otherServer) {
            throw;
        }
        LUMO_ERROR(log, L"The server has shown another certificate than the one that was accepted.");
        throw OwnOutcome({certificateRefusedStatus, Utils::LoadStringW(IDS_CERTIFICATE_REFUSED)});
    }
}

void CVantryApi::logAnswer(const LumoFunction& log, const json::value& answer)
{
    if (!answer.is_null()) {
        LUMO_INFO(log, L"Server's response: " << Utils::jsonText(answer));
    }
}

ServerAnswer CVantryApi::sendRequest_ProvideServerResponse(const uri& requestUri, const std::wstring& method,
                                                           const json::value& body)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::sendRequest_ProvideServerResponse");
    return Utils::safe_CallMethod([&] { return unsafe_sendRequest(requestUri, method, body); });
}
} // namespace VantryIntegrationApi
