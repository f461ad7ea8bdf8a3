#include "Addresses.h"
#include "BoundedExchange.h"
#include "ClientConfig.h"
#include "ErrorText.h"
#include "ModuleTexts.h"
#include "OwnOutcome.h"
#include "RestText.h"
#include "StringTable.h"
#include "VantryApi.h"
#include "WindowsCalls.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>

using Platform::fromAnsi;
using Platform::fromRestText;
using Platform::toRestText;
using web::http::status_codes;
using web::http::client::http_client_config;

namespace VantryIntegrationApi
{
/// What a probe's connection may write: its certificate, once, while the probe is waited for. The connection
/// may live longer than that.
class ProbedCertificate
{
public:
    using Save = std::function<void(const CERT_CONTEXT&)>;

    explicit ProbedCertificate(Save save) : m_save(std::move(save)) {}

    void show(const CERT_CONTEXT& certificate)
    {
        const std::lock_guard lock(m_mutex);
        if (const auto save = std::exchange(m_save, nullptr)) {
            save(certificate);
        }
    }

    void end()
    {
        const std::lock_guard lock(m_mutex);
        m_save = nullptr;
    }

private:
    std::mutex m_mutex;
    Save m_save;
};

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
            Platform::setCertificateHook(config, [probed = m_probe.lock()](const CERT_CONTEXT& certificate) {
                probed->show(certificate);
                return true;
            });
        }
    } catch (const std::exception& e) {
        LUMO_FATAL(log, fromAnsi(e.what()));
    }
    return config;
}

bool CVantryApi::validateCertificateRequest()
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::validateCertificateRequest");
    m_acceptedCertificate.reset();
    m_probed = Utils::isSecureScheme(m_endPoint);
    if (!m_probed) {
        LUMO_INFO(log, L"Connection is not secured. Skipping certificate validation.");
        m_lastResponse.httpStatusCode = status_codes::OK;
        return true;
    }
    try {
        m_lastResponse = probe(log);
        LUMO_INFO(log, L"Certificate validation request, ended successfully. Will show dialog for user with "
                       L"certificate info.");
        if (ValidateCertificate()) {
            return true;
        }
        LUMO_INFO(log, L"Certificate validation wasn't successful.");
        m_lastResponse = {certificateRefusedStatus, Utils::LoadStringW(IDS_CERTIFICATE_REFUSED)};
    } catch (const OwnOutcome& outcome) {
        LUMO_ERROR(log, L"Certificate validation wasn't successful.");
        m_lastResponse = outcome.status();
    } catch (const web::http::http_exception& e) {
        const auto message = Platform::errorText(e.error_code());
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

ResponseStatus CVantryApi::probe(const LumoFunction& log)
{
    web::http::http_request request(web::http::methods::GET);
    request.set_request_uri(U("/"));
    const auto base = Utils::getSchemeIpAsUrl(m_endPoint);
    const auto probed = std::make_shared<ProbedCertificate>(
        [this](const CERT_CONTEXT& certificate) { SaveCertificateLocally(certificate); });
    const std::unique_ptr<ProbedCertificate, void (*)(ProbedCertificate*)> ending(
        probed.get(), [](ProbedCertificate* ended) { ended->end(); });
    m_probe = probed;
    auto config = getClientConfig(true);
    LUMO_INFO(log, L"Used url: " << base << fromRestText(request.request_uri().to_string()));
    const auto readNoBody = [](const web::http::http_response& /*response*/) { return false; };
    BoundedExchange exchange(web::uri(toRestText(base)), std::move(config), request, m_limits, readNoBody);
    LUMO_DEBUG(log, L"Going to run task and get results.");
    const auto& response = exchange.wait(m_transferWatcher);
    return {response.status_code(), fromRestText(response.reason_phrase())};
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
        const Certificate certificate(CertDuplicateCertificateContext(m_pVantryCertContext),
                                      &CertFreeCertificateContext);
        const bool accepted = validator(*certificate);
        m_probed = true;
        m_acceptedCertificate = certificate;
        return accepted;
    }
    LUMO_LINE(m_logger, Info,
              L"(m_certificateValidator == nullptr || m_pVantryCertContext == nullptr) - Certificate "
              L"validation is skipped.");
    return true;
}

std::shared_ptr<const std::atomic<bool>> CVantryApi::requireAcceptedServer(http_client_config& config) const
{
    const auto otherServer = std::make_shared<std::atomic<bool>>(false);
    if (m_probed) {
        config.set_validate_certificates(true);
    }
    if (m_acceptedCertificate) {
        Platform::setCertificateHook(config, [accepted = m_acceptedCertificate,
                                              otherServer](const CERT_CONTEXT& certificate) {
            *otherServer =
                !std::equal(certificate.pbCertEncoded, certificate.pbCertEncoded + certificate.cbCertEncoded,
                            accepted->pbCertEncoded, accepted->pbCertEncoded + accepted->cbCertEncoded);
            return !*otherServer;
        });
    }
    return otherServer;
}
} // namespace VantryIntegrationApi
