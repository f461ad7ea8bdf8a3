#pragma once

#include <openssl/types.h>

#include <map>
#include <memory>
#include <string>

namespace boost::asio::ssl
{
class context;
}

namespace sandbox
{
/// What a server can present. All but the first and the last are faulty in one way.
enum class CertificateKind
{
    Good,
    Expired,
    NotYetValid,
    OtherHost,
    SelfSigned,
    UnknownCa,
    Other ///< as good as the first, but another one
};

struct ServerCertificate
{
    std::string der;
    std::shared_ptr<boost::asio::ssl::context> tls; ///< that presents it
};

/// The certificate authority of this one run, with its revocation list.
class CertificateAuthority
{
public:
    /// @param crlUrl the list's address, for its certificates to name
    explicit CertificateAuthority(std::string crlUrl);

    std::string pem() const;
    std::string der() const;
    std::string revocationListDer() const;

    /// A server's certificate for "localhost", issued when it is first asked for.
    const ServerCertificate& certificate(CertificateKind kind);

private:
    ServerCertificate issue(CertificateKind kind) const;

    std::string m_crlUrl;
    std::shared_ptr<EVP_PKEY> m_key;
    std::shared_ptr<X509> m_certificate;
    std::map<CertificateKind, ServerCertificate> m_issued;
};
} // namespace sandbox
