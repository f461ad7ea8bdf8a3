#include "TlsContexts.h"

#include <boost/asio/buffer.hpp>

namespace sandbox
{
namespace
{
namespace ssl = boost::asio::ssl;

ssl::context contextWith(const ServerCertificate& certificate)
{
    ssl::context tls(ssl::context::tls_server);
    tls.set_options(ssl::context::no_tlsv1 | ssl::context::no_tlsv1_1);
    tls.use_certificate(boost::asio::buffer(certificate.pem), ssl::context::pem);
    tls.use_private_key(boost::asio::buffer(certificate.keyPem), ssl::context::pem);
    return tls;
}
} // namespace

ssl::context& TlsContexts::presenting(CertificateKind kind)
{
    return entry(kind).context;
}

const std::string& TlsContexts::certificateDer(CertificateKind kind)
{
    return entry(kind).certificate.der;
}

TlsContexts::Entry& TlsContexts::entry(CertificateKind kind)
{
    const auto found = m_entries.find(kind);
    if (found != m_entries.end()) {
        return found->second;
    }
    ServerCertificate certificate = m_authority.issue(kind);
    ssl::context context = contextWith(certificate);
    return m_entries.emplace(kind, Entry{std::move(certificate), std::move(context)}).first->second;
}
} // namespace sandbox
