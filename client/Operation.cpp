// What the six operations share around their own protocol.
#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

#include <optional>

using Platform::fromAnsi;
using Platform::fromRestText;

namespace
{
constexpr const wchar_t* credentialMask = L"***************";

void maskFirst(std::wstring& url, const std::optional<std::wstring>& secret)
{
    if (const auto at = secret ? url.find(*secret) : std::wstring::npos; at != std::wstring::npos) {
        url.replace(at, secret->size(), credentialMask);
    }
}
} // namespace

namespace VantryIntegrationApi
{
bool CVantryApi::perform(const wchar_t* operation, const std::function<web::uri()>& prepareRequest,
                         const std::function<ResponseStatus(const web::uri&)>& send)
{
    LUMO_LINES_OF(m_logger, operation);
    web::uri requestUri;
    if (!prepare(operation, [&] { requestUri = prepareRequest(); }) || !certificateIsTrusted(operation)) {
        return false;
    }
    LUMO_DEBUG(L"Going to send request to server");
    m_lastResponse = send(requestUri);
    return true;
}

bool CVantryApi::performPost(const wchar_t* operation, const std::function<web::uri()>& prepareRequest,
                             const web::json::value& body, Utils::JsonAnswer& answer)
{
    return perform(operation, prepareRequest, [&](const web::uri& requestUri) {
        return sendRequest_ProvideServerResponse(requestUri, fromRestText(web::http::methods::POST), body,
                                                 answer);
    });
}

bool CVantryApi::prepare(const wchar_t* operation, const std::function<void()>& step)
{
    LUMO_LINES_OF(m_logger, operation);
    try {
        step();
        return true;
    } catch (const std::exception& e) {
        const auto text = fromAnsi(e.what());
        LUMO_FATAL(L"Exception happened: " << text);
        m_lastResponse = {requestFailedStatus, text};
        return false;
    }
}

bool CVantryApi::certificateIsTrusted(const wchar_t* operation)
{
    LUMO_LINES_OF(m_logger, operation);
    LUMO_DEBUG(L"Going to validate certificate");
    bool trusted = false;
    // An endpoint that is no URI is found out here, before anything is sent.
    if (!prepare(operation, [&] { trusted = validateCertificateRequest(); })) {
        return false;
    }
    if (!trusted) {
        LUMO_ERROR(L"Validation of certificate has failed. User request is stopped.");
    }
    return trusted;
}

web::uri CVantryApi::addressWithCredentials(const utility::char_t* path) const
{
    return web::uri_builder()
        .set_path(path)
        .append_query(Utils::credentialQuery(m_userName, m_password), false)
        .to_uri();
}

void CVantryApi::logUsedUrl(const web::uri& url, const wchar_t* operation) const
{
    if (log4cxx::Logger::isInfoEnabledFor(m_logger)) {
        LogUsedUrl(fromRestText(url.to_string()), operation);
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): both are copies to work on
void CVantryApi::LogUsedUrl(std::wstring url, std::wstring operation) const
{
    // First, since a password that also occurs earlier in the URL uses up the one replacement below.
    url = Lumo::withoutPassword(std::move(url));
    maskFirst(url, Utils::shownInQuery(m_userName));
    maskFirst(url, Utils::shownInQuery(m_password));
    LUMO_LINE(m_logger, Info, L"Function: " << operation << L" used url: " << m_endPoint << url);
}
} // namespace VantryIntegrationApi
