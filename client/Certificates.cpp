#include "AnswerBounds.h"
#include "ClientConfig.h"
#include "RestText.h"
#include "StringTable.h"
#include "Utils.h"
#include "VantryApi.h"
#include "WindowsCalls.h"

#include <memory>

using Platform::fromAnsi;
using Platform::fromRestText;
using Platform::toRestText;
using web::http::status_codes;
using web::http::client::http_client;
using web::http::client::http_client_config;

namespace VantryIntegrationApi
{
http_client_config CVantryApi::getClientConfig(bool validate)
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::getClientConfig");
    auto config = Platform::makeClientConfig();
    config.set_validate_certificates(false);
    config.set_max_redirects(0); // one exchange, with the server that the host named
    if (!validate) {
        LUMO_DEBUG(L"Validation of certificates is skipped.");
        return config;
    }
    try {
        if (Utils::isSecureScheme(m_endPoint)) {
            LUMO_DEBUG(L"This is secure connection. Setting validation of certificates.");
            config.set_validate_certificates(true);
            Platform::setCertificateHook(
                config, [this](const CERT_CONTEXT& certificate) { SaveCertificateLocally(certificate); });
        }
    } catch (const std::exception& e) {
        LUMO_FATAL(fromAnsi(e.what()));
    }
    return config;
}

bool CVantryApi::validateCertificateRequest()
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::validateCertificateRequest");
    if (!Utils::isSecureScheme(m_endPoint)) {
        LUMO_INFO(L"Connection is not secured. Skipping certificate validation.");
        m_lastResponse.httpStatusCode = status_codes::OK;
        return true;
    }
    try {
        web::http::http_request probe(web::http::methods::GET);
        probe.set_request_uri(U("/"));
        const auto base = Utils::getSchemeIpAsUrl(m_endPoint);
        http_client client(toRestText(base), getClientConfig(true));
        LUMO_INFO(L"Used url: " << base << fromRestText(probe.request_uri().to_string()));
        {
            const BoundedAnswer bounded(probe);
            const auto answered =
                client.request(probe).then([this](const web::http::http_response& response) {
                    m_lastResponse = {response.status_code(), fromRestText(response.reason_phrase())};
                });
            LUMO_DEBUG(L"Going to run task and get results.");
            answered.wait();
        }
        LUMO_INFO(
            L"Certificate validation request, ended successfully. Will show dialog for user with certificate "
            L"info.");
        if (ValidateCertificate()) {
            return true;
        }
        LUMO_INFO(L"Certificate validation wasn't successful.");
        m_lastResponse = {certificateRefusedStatus, Utils::LoadStringW(IDS_CERTIFICATE_REFUSED)};
    } catch (const web::http::http_exception& e) {
        const auto message = fromAnsi(e.error_code().message());
        LUMO_FATAL(L"http_exception happened: " << fromAnsi(e.what()));
        LUMO_ERROR(L"Certificate validation wasn't successful.");
        LUMO_FATAL(L"Error Code: " << e.error_code().value() << L"; Message: " << message);
        m_lastResponse = {requestFailedStatus, message};
    } catch (const std::exception& e) {
        LUMO_FATAL(L"std::exception happened: " << fromAnsi(e.what()));
        LUMO_ERROR(L"Certificate validation wasn't successful.");
        m_lastResponse = {certificateRefusedStatus, Utils::LoadStringW(IDS_CERTIFICATE_REFUSED)};
    }
    return false;
}

void CVantryApi::SaveCertificateLocally(const CERT_CONTEXT& certificate)
{
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::SaveCertificateLocally");
    LUMO_INFO(L"Storing certificate locally for further validation");
    if (m_pVantryCertContext != nullptr) {
        CertFreeCertificateContext(m_pVantryCertContext); // always succeeds
        m_pVantryCertContext = nullptr;
    }
    m_pVantryCertContext =
        CertDuplicateCertificateContext(&certificate); // always succeeds: counts a reference
}

bool CVantryApi::ValidateCertificate()
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::ValidateCertificate");
    if (m_certificateValidator != nullptr && m_pVantryCertContext != nullptr) {
        // Copies: the callback may set another one, or run an operation that stores another certificate.
        const auto validator = m_certificateValidator;
        const std::unique_ptr<const CERT_CONTEXT, decltype(&CertFreeCertificateContext)> certificate(
            CertDuplicateCertificateContext(m_pVantryCertContext), &CertFreeCertificateContext);
        return validator(*certificate);
    }
    LUMO_LINE(m_logger, Info,
              L"(m_certificateValidator == nullptr || m_pVantryCertContext == nullptr) - Certificate "
              L"validation is skipped.");
    return true;
}
} // namespace VantryIntegrationApi
