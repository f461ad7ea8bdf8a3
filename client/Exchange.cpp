#include "AnswerBounds.h"
#include "GuardedCall.h"
#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

#include <memory>

using Platform::fromRestText;
using Platform::toRestText;
using web::uri;
using web::http::methods;

namespace json = web::json;

namespace VantryIntegrationApi
{
ResponseStatus CVantryApi::unsafe_sendRequest(const uri& requestUri, const std::wstring& method,
                                              const json::value& body, Utils::JsonAnswer& result)
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest");
    LUMO_INFO(L"We are sending request with method: " << method);

    web::http::http_request request(toRestText(method));
    request.set_request_uri(requestUri);
    if (request.method() == methods::POST || request.method() == methods::PUT) {
        auto text = body.serialize();
        LUMO_INFO(L"We are sending request with data: " << fromRestText(text));
        request.set_body(std::move(text), U("text/plain"));
        request.headers().set_content_type(U("application/json"));
    }

    const auto reader = [](web::http::http_response& response) {
        const LumoLogBlock block(m_logger, L"Running request");
        return Utils::handleResponse(response);
    };
    auto status = exchange(lumoName, Utils::serverAddress(m_endPoint), request, reader, result);
    logAnswer(lumoName, *result);
    return status;
}

ResponseStatus CVantryApi::exchange(const wchar_t* caller, const uri& base, web::http::http_request& request,
                                    const ResponseReader& reader, Utils::JsonAnswer& result)
{
    LUMO_LINES_OF(m_logger, caller);
    web::http::client::http_client client(base, getClientConfig(false));
    const BoundedAnswer bounded(request);
    const auto status = std::make_shared<ResponseStatus>();
    auto answer = client.request(request).then([status, &reader](web::http::http_response response) {
        *status = {response.status_code(), fromRestText(response.reason_phrase())};
        return reader(response);
    });
    LUMO_DEBUG(L"Going to run tasks and get results.");
    answer.wait();
    result = answer.get();
    return *status;
}

void CVantryApi::logAnswer(const wchar_t* caller, const json::value& answer)
{
    LUMO_LINES_OF(m_logger, caller);
    if (!answer.is_null()) {
        LUMO_INFO(L"Server's response: " << Utils::jsonText(answer));
    }
}

ResponseStatus CVantryApi::sendRequest_ProvideServerResponse(const uri& requestUri,
                                                             const std::wstring& method,
                                                             Utils::JsonAnswer& result)
{
    return sendRequest_ProvideServerResponse(requestUri, method, json::value::null(), result);
}

ResponseStatus CVantryApi::sendRequest_ProvideServerResponse(const uri& requestUri,
                                                             const std::wstring& method,
                                                             const json::value& body,
                                                             Utils::JsonAnswer& result)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::sendRequest_ProvideServerResponse");
    return Utils::safe_CallMethod([&] { return unsafe_sendRequest(requestUri, method, body, result); });
}
} // namespace VantryIntegrationApi
