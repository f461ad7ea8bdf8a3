#pragma once

#include "Certificates.h"

#include <boost/asio/ssl/context.hpp>

#include <map>
#include <string>

namespace sandbox
{
/// What the TLS port needs to present one certificate or another; made when it is wanted first.
class TlsContexts
{
public:
    explicit TlsContexts(const CertificateAuthority& authority) : m_authority(authority) {}

    boost::asio::ssl::context& presenting(CertificateKind kind);
    const std::string& certificateDer(CertificateKind kind);

private:
    struct Entry
    {
        ServerCertificate certificate;
        boost::asio::ssl::context context;
    };

    Entry& entry(CertificateKind kind);

    const CertificateAuthority& m_authority;
    std::map<CertificateKind, Entry> m_entries;
};
} // namespace sandbox
