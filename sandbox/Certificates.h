#pragma once

#include <openssl/types.h>

#include <memory>
#include <string>

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
    std::string pem;
    std::string der;
    std::string keyPem;
};

/// The certificate authority of this one run, with its revocation list.
class CertificateAuthority
{
public:
    explicit CertificateAuthority(std::string crlUrl);

    std::string pem() const;
    std::string der() const;
    std::string revocationListDer() const;

    /// A server's certificate for "localhost", with a key of its own.
    ServerCertificate issue(CertificateKind kind) const;

private:
    std::string m_crlUrl;
    std::shared_ptr<EVP_PKEY> m_key;
    std::shared_ptr<X509> m_certificate;
};
} // namespace sandbox
