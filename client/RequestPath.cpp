#include "RestText.h"
#include "StringTable.h"
#include "Utils.h"
#include "VantryApi.h"

#include <boost/algorithm/string/predicate.hpp>

#include <memory>
#include <optional>
#include <stdexcept>

using Platform::fromAnsi;
using Platform::fromRestText;
using Platform::toRestText;
using web::uri;
using web::http::methods;

namespace json = web::json;

namespace
{
constexpr const wchar_t* credentialMask = L"***************";

/// The text as it stands in a query; none for malformed text, which stands in no query.
std::optional<std::wstring> encodedForQuery(const std::wstring& text)
{
    try {
        return fromRestText(uri::encode_data_string(toRestText(text)));
    } catch (const std::range_error&) {
        return std::nullopt;
    }
}

void maskFirst(std::wstring& url, const std::optional<std::wstring>& secret)
{
    if (const auto at = secret ? url.find(*secret) : std::wstring::npos; at != std::wstring::npos) {
        url.replace(at, secret->size(), credentialMask);
    }
}
} // namespace

namespace VantryIntegrationApi
{
ResponseStatus Utils::safe_CallMethod(const std::function<ResponseStatus()>& method)
{
    LUMO_FUNCTION(CVantryApi::m_logger, "VantryIntegrationApi::Utils::safe_CallMethod");
    ResponseStatus status;
    try {
        status = method();
    } catch (const web::http::http_exception& e) {
        LUMO_FATAL(L"http_exception happened: " << fromAnsi(e.what()));
        const auto message = fromAnsi(e.error_code().message());
        LUMO_FATAL(L"Error Code: " << e.error_code().value() << L"; Message: " << message);
        status = {requestFailedStatus, message};
    } catch (const web::uri_exception& e) {
        LUMO_FATAL(L"uri_exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, fromAnsi(e.what())};
    } catch (const json::json_exception& e) {
        LUMO_FATAL(L"json_exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, fromAnsi(e.what())};
    } catch (const std::exception& e) {
        LUMO_FATAL(L"std::exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, LoadStringW(IDS_REQUEST_FAILED)};
    } catch (...) {
        LUMO_FATAL(L"Unexpected exception happened");
        status = {requestFailedStatus, LoadStringW(IDS_REQUEST_FAILED)};
    }
    LUMO_INFO(L"Returnting ResponseStatus information with such values. HttpStatusCode: "
              << status.httpStatusCode << L" Error Message: " << status.errorMessage);
    return status;
}

ResponseStatus CVantryApi::unsafe_sendRequest(const uri& requestUri, const std::wstring& method,
                                              const json::value& body, json::value& result)
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest");
    LUMO_INFO(L"We are sending request with method: " << method);

    web::http::http_request request(toRestText(method));
    request.set_request_uri(requestUri);
    if (request.method() == methods::POST || request.method() == methods::PUT) {
        const auto text = body.serialize();
        LUMO_INFO(L"We are sending request with data: " << fromRestText(text));
        request.set_body(text, U("text/plain"));
        request.headers().set_content_type(U("application/json"));
    }

    const auto reader = [](web::http::http_response& response) {
        const LumoLogBlock block(m_logger, L"Running request");
        return Utils::handleResponse(response);
    };
    auto status = exchange(lumoName, uri(toRestText(m_endPoint)), request, reader, result);
    if (!result.is_null()) {
        LUMO_INFO(L"Server's response: " << Utils::jsonText(result));
    }
    return status;
}

ResponseStatus CVantryApi::exchange(const wchar_t* caller, const uri& base,
                                    const web::http::http_request& request, const ResponseReader& reader,
                                    json::value& result)
{
    web::http::client::http_client client(base, getClientConfig(false));
    const auto status = std::make_shared<ResponseStatus>();
    auto answer = client.request(request).then([status, &reader](web::http::http_response response) {
        *status = {response.status_code(), fromRestText(response.reason_phrase())};
        return reader(response);
    });
    LOG4CXX_DEBUG(m_logger, caller << L"; " << L"Going to run tasks and get results.");
    answer.wait();
    result = answer.get();
    return *status;
}

ResponseStatus CVantryApi::sendRequest_ProvideServerResponse(const uri& requestUri,
                                                             const std::wstring& method, json::value& result)
{
    return sendRequest_ProvideServerResponse(requestUri, method, json::value::null(), result);
}

ResponseStatus CVantryApi::sendRequest_ProvideServerResponse(const uri& requestUri,
                                                             const std::wstring& method,
                                                             const json::value& body, json::value& result)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::sendRequest_ProvideServerResponse");
    return Utils::safe_CallMethod([&] { return unsafe_sendRequest(requestUri, method, body, result); });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): both are copies to work on
void CVantryApi::LogUsedUrl(std::wstring url, std::wstring operation) const
{
    if (!log4cxx::Logger::isInfoEnabledFor(m_logger)) {
        return;
    }
    const auto password = encodedForQuery(m_password);
    const bool endsInPassword =
        password && !password->empty() && boost::ends_with(url, L"&password=" + *password);
    maskFirst(url, encodedForQuery(m_userName));
    maskFirst(url, password);
    if (endsInPassword && boost::ends_with(url, L"=" + *password)) { // the mask was spent on the text before
        url.replace(url.size() - password->size(), password->size(), credentialMask);
    }
    LOG4CXX_INFO(m_logger, L"Function: " << operation << L" used url: " << m_endPoint << url);
}

bool CVantryApi::prepare(const wchar_t* operation, const std::function<void()>& step)
{
    try {
        step();
        return true;
    } catch (const std::exception& e) {
        const auto text = fromAnsi(e.what());
        LOG4CXX_FATAL(m_logger, operation << L"; " << L"Exception happened: " << text);
        m_lastResponse = {requestFailedStatus, text};
        return false;
    }
}
} // namespace VantryIntegrationApi
