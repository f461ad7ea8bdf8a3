#include "Operation.h"

#include "Addresses.h"
#include "RestText.h"

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
bool CVantryApi::mayBeSent(const LumoFunction& log)
{
    LUMO_DEBUG(log, L"Going to validate certificate");
    // An endpoint that is no URI is found out here, before anything is sent.
    const auto trusted = prepared(log, [this] { return validateCertificateRequest(); });
    if (!trusted) {
        return false;
    }
    if (!*trusted) {
        LUMO_ERROR(log, L"Validation of certificate has failed. User request is stopped.");
        return false;
    }
    LUMO_DEBUG(log, L"Going to send request to server");
    return true;
}

web::uri CVantryApi::addressWithCredentials(const utility::char_t* path) const
{
    return web::uri_builder()
        .set_path(path)
        .append_query(Utils::credentialQuery(m_userName, m_password), false)
        .to_uri();
}

void CVantryApi::LogUsedUrl(const web::uri& address, const char* operation) const
{
    if (!log4cxx::Logger::isInfoEnabledFor(m_logger)) {
        return;
    }
    // The password first, since one that also occurs earlier in the URL uses up the one replacement below.
    auto url = Lumo::withoutPassword(Platform::fromRestText(address.to_string()));
    maskFirst(url, Utils::shownInQuery(m_userName));
    maskFirst(url, Utils::shownInQuery(m_password));
    LUMO_LINE(m_logger, Info, L"Function: " << operation << L" used url: " << m_endPoint << url);
}
} // namespace VantryIntegrationApi
