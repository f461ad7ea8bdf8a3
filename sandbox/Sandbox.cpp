#include "Sandbox.h"

#include <random>

namespace sandbox
{

namespace
{

std::string address(const std::string& scheme, const Listener& listener)
{
    return scheme + "://localhost:" + std::to_string(listener.port());
}

/// Never the same twice: a client may keep a list by its address, and ports come round again.
std::string listAddress(const std::string& control)
{
    return control + "/crl.der?" + std::to_string(std::random_device()());
}

} // namespace

Sandbox::Sandbox(boost::asio::io_context& context, const Options& options)
    : m_control(context), m_http(context), m_https(context),
      m_authority(listAddress(address("http", m_control))), m_caFile(m_authority.pem(), options.caFile),
      m_tls(m_authority), m_base(options.base),
      m_restService(m_state, {options.user, options.password}, options.base),
      m_controlService(m_state, m_authority, m_tls.certificateDer(CertificateKind::Good))
{
    m_control.start(m_controlService);
    m_http.start(m_restService);
    m_https.start(m_restService, &m_tls);
}

std::string Sandbox::httpEndpoint() const
{
    return address("http", m_http) + m_base;
}

std::string Sandbox::httpsEndpoint() const
{
    return address("https", m_https) + m_base;
}

std::string Sandbox::controlEndpoint() const
{
    return address("http", m_control);
}

std::string Sandbox::caFile() const
{
    return m_caFile.path().string();
}

} // namespace sandbox
