#include "Sandbox.h"

#include <boost/asio/buffer.hpp>

#include <random>

namespace sandbox
{

namespace
{

namespace ssl = boost::asio::ssl;

std::string address(const std::string& scheme, const Listener& listener)
{
    return scheme + "://localhost:" + std::to_string(listener.port());
}

/// Never the same twice: a client may keep a list by its address, and ports come round again.
std::string listAddress(const std::string& control)
{
    return control + "/crl.der?" + std::to_string(std::random_device()());
}

ssl::context createTls(const Certificates& certificates)
{
    ssl::context tls(ssl::context::tls_server);
    tls.set_options(ssl::context::no_tlsv1 | ssl::context::no_tlsv1_1);
    tls.use_certificate(boost::asio::buffer(certificates.leafPem), ssl::context::pem);
    tls.use_private_key(boost::asio::buffer(certificates.leafKeyPem), ssl::context::pem);
    return tls;
}

} // namespace

Sandbox::Sandbox(boost::asio::io_context& context, const Options& options)
    : m_control(context), m_http(context), m_https(context),
      m_certificates(createCertificates(listAddress(address("http", m_control)))),
      m_caFile(m_certificates.caPem, options.caFile), m_tls(createTls(m_certificates)), m_base(options.base),
      m_restService(m_state, {options.user, options.password}, options.base),
      m_controlService(m_state, m_certificates)
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
