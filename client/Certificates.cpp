#include "Addresses.h"
#include "AnswerBounds.h"
#include "ClientConfig.h"
#include "ModuleTexts.h"
#include "RestText.h"
#include "StringTable.h"
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
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::getClientConfig");
    auto config = Platform::makeClientConfig();
    config.set_validate_certificates(false);
    config.set_max_redirects(0); // one exchange, with the server that the host named
    if (!validate) {
        LUMO_DEBUG(log, L"Validation of certificates is skipped.");
        return config;
    }
    try {
        if (Utils::isSecureScheme(m_endPoint)) {
            LUMO_DEBUG(log, L"This is secure connection. Setting validation of certificates.");
            config.set_validate_certificates(true);
            Platform::setCertificateHook(
                config, [this](const CERT_CONTEXT& certificate) { SaveCertificateLocally(certificate); });
        }
    } catch (const std::exception& e) {
        LUMO_FATAL(log, fromAnsi(e.what()));
    }
    return config;
}

bool CVantryApi::validateCertificateRequest()
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::validateCertificateRequest");
    if (!Utils::isSecureScheme(m_endPoint)) {
        LUMO_INFO(log, L"Connection is not secured. Skipping certificate validation.");
        m_lastResponse.httpStatusCode = status_codes::OK;
        return true;
    }
    try {
        web::http::http_request probe(web::http::methods::GET);
        probe.set_request_uri(U("/"));
        const auto base = Utils::getSchemeIpAsUrl(m_endPoint);
        http_client client(toRestText(base), getClientConfig(true));
        LUMO_INFO(log, L"Used url: " << base << fromRestText(probe.request_uri().to_string()));
        {
            const BoundedAnswer bounded(probe);
            const auto answered =
                client.request(probe).then([this](const web::http::http_response& response) {
                    m_lastResponse = {response.status_code(), fromRestText(response.reason_phrase())};
                });
            LUMO_DEBUG(log, L"Going to run task and get results.");
            answered.wait();
        }
        LUMO_INFO(
            log,
            L"Certificate validation request, ended successfully. Will show dialog for user with certificate "
            L"info.");
        if (ValidateCertificate()) {
            return true;
        }
        LUMO_INFO(log, L"Certificate validation wasn't successful.");
        m_lastResponse = {certificateRefusedStatus, Utils::LoadStringW(IDS_CERTIFICATE_REFUSED)};
    } catch (const web::http::http_exception& e) {
        const auto message = fromAnsi(e.error_code().message());
        LUMO_FATAL(log, L"http_exception happened: " << fromAnsi(e.what()));
        LUMO_ERROR(log, L"Certificate validation wasn't successful.");
        LUMO_FATAL(log, L"Error Code: " << e.error_code().value() << L"; Message: " << message);
        m_lastResponse = {requestFailedStatus, message};
    } catch (const std::exception& e) {
        LUMO_FATAL(log, L"std::exception happened: " << fromAnsi(e.what()));
        LUMO_ERROR(log, L"Certificate validation wasn't successful.");
        m_lastResponse = {certificateRefusedStatus, Utils::LoadStringW(IDS_CERTIFICATE_REFUSED)};
    }
    return false;
}

void CVantryApi::SaveCertificateLocally(const CERT_CONTEXT& certificate)
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::SaveCertificateLocally");
    LUMO_INFO(log, L"Storing certificate locally for further validation");
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
