#include "VantryApi.h"

#include "Addresses.h"

namespace VantryIntegrationApi
{
CVantryApi::CVantryApi(const ExchangeLimits& limits) : m_limits(limits)
{
    m_lastResponse = {0, L""};
}

void CVantryApi::setEndPoint(const std::wstring& endPoint)
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::setEndPoint");
    LUMO_INFO(log, L"Endpoing: " << endPoint);
    m_endPoint = endPoint;
}

void CVantryApi::setCredentials(const std::wstring& userName, const std::wstring& password)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::setCredentials");
    m_userName = userName;
    m_password = password;
    Lumo::hidePassword(Utils::shownInQuery(m_password).value_or(L""));
}

void CVantryApi::setValidateCertificateCallback(ValidateCertificateCallback callback)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::setValidateCertificateCallback");
    m_certificateValidator = nullptr; // what the host held in the old one goes before the new one comes
    // a copy: the argument lives, and ends, apart from the member
    m_certificateValidator = callback; // NOLINT(performance-unnecessary-value-param)
}
} // namespace VantryIntegrationApi
