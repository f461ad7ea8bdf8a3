#include "Certificates.h"

#include <boost/asio/ssl/context.hpp>
#include <openssl/ecdsa.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <initializer_list>
#include <random>
#include <stdexcept>
#include <utility>

namespace sandbox
{
namespace
{
namespace ssl = boost::asio::ssl;

/// Days from today.
struct Validity
{
    int begin = -1;
    int end = 30;
};

void require(bool succeeded)
{
    if (!succeeded) {
        const char* reason = ERR_reason_error_string(ERR_get_error());
        throw std::runtime_error(std::string("cannot create certificates: ") +
                                 (reason != nullptr ? reason : "unknown error"));
    }
}

template <typename Object>
std::shared_ptr<Object> owned(Object* object, void (*release)(Object*))
{
    require(object != nullptr);
    return {object, release};
}

std::shared_ptr<EVP_PKEY> createKey()
{
    return owned(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), EVP_PKEY_free);
}

std::shared_ptr<ASN1_INTEGER> randomNumber()
{
    std::random_device random;
    auto number = owned(ASN1_INTEGER_new(), ASN1_INTEGER_free);
    require(ASN1_INTEGER_set_uint64(number.get(), (std::uint64_t{random()} << 32U) | random()) == 1);
    return number;
}

std::shared_ptr<ASN1_TIME> daysFromNow(int days)
{
    return owned(X509_time_adj_ex(nullptr, days, 0, nullptr), ASN1_TIME_free);
}

std::shared_ptr<X509_EXTENSION> createExtension(X509V3_CTX& context, int nid, const std::string& text)
{
    return owned(X509V3_EXT_conf_nid(nullptr, &context, nid, text.c_str()), X509_EXTENSION_free);
}

/// Whether both numbers of an ECDSA signature are as long as the curve's: DER leaves out leading zeros, and
/// Wine then takes the signature for a wrong one.
bool hasFullLength(const ASN1_BIT_STRING& signature)
{
    constexpr int curveBytes = 32;
    const auto* next = ASN1_STRING_get0_data(&signature);
    const auto numbers = owned(d2i_ECDSA_SIG(nullptr, &next, ASN1_STRING_length(&signature)), ECDSA_SIG_free);
    return BN_num_bytes(ECDSA_SIG_get0_r(numbers.get())) == curveBytes &&
           BN_num_bytes(ECDSA_SIG_get0_s(numbers.get())) == curveBytes;
}

/// Signs until the signature has its full length: once, nearly always.
void sign(X509& certificate, EVP_PKEY& issuerKey)
{
    const ASN1_BIT_STRING* signature = nullptr;
    do {
        require(X509_sign(&certificate, &issuerKey, EVP_sha256()) > 0);
        X509_get0_signature(&signature, nullptr, &certificate);
    } while (!hasFullLength(*signature));
}

void sign(X509_CRL& list, EVP_PKEY& issuerKey)
{
    const ASN1_BIT_STRING* signature = nullptr;
    do {
        require(X509_CRL_sign(&list, &issuerKey, EVP_sha256()) > 0);
        X509_CRL_get0_signature(&list, &signature, nullptr);
    } while (!hasFullLength(*signature));
}

/// @param issuer null: the certificate itself
std::shared_ptr<X509> issued(const std::string& name, Validity validity, EVP_PKEY& key, X509* issuer,
                             EVP_PKEY& issuerKey,
                             std::initializer_list<std::pair<int, std::string>> extensions)
{
    auto certificate = owned(X509_new(), X509_free);
    require(X509_set_version(certificate.get(), X509_VERSION_3) == 1 &&
            X509_set_serialNumber(certificate.get(), randomNumber().get()) == 1 &&
            X509_set1_notBefore(certificate.get(), daysFromNow(validity.begin).get()) == 1 &&
            X509_set1_notAfter(certificate.get(), daysFromNow(validity.end).get()) == 1 &&
            X509_set_pubkey(certificate.get(), &key) == 1 &&
            X509_NAME_add_entry_by_NID(X509_get_subject_name(certificate.get()), NID_commonName,
                                       MBSTRING_UTF8, reinterpret_cast<const unsigned char*>(name.data()),
                                       static_cast<int>(name.size()), -1, 0) == 1);
    issuer = issuer != nullptr ? issuer : certificate.get();
    require(X509_set_issuer_name(certificate.get(), X509_get_subject_name(issuer)) == 1);
    X509V3_CTX context{};
    X509V3_set_ctx(&context, issuer, certificate.get(), nullptr, nullptr, 0);
    for (const auto& [nid, text] : extensions) {
        require(X509_add_ext(certificate.get(), createExtension(context, nid, text).get(), -1) == 1);
    }
    sign(*certificate, issuerKey);
    return certificate;
}

std::shared_ptr<X509> createAuthority(EVP_PKEY& key)
{
    // A name of its own, since systems look for an issuer by its name: one that still trusts an earlier
    // sandbox's CA must not take it for this one.
    const std::string name = "Vantry Sandbox CA " + std::to_string(std::random_device()());
    return issued(name, {}, key, nullptr, key,
                  {{NID_basic_constraints, "critical,CA:TRUE"},
                   {NID_key_usage, "critical,keyCertSign,cRLSign"},
                   {NID_subject_key_identifier, "hash"},
                   {NID_authority_key_identifier, "keyid:always"}});
}

template <typename Object>
std::string encoded(const Object& object, int (*write)(BIO*, const Object*))
{
    const auto memory = owned(BIO_new(BIO_s_mem()), BIO_free_all);
    require(write(memory.get(), &object) == 1);
    char* text = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &text);
    return {text, text + length};
}

std::shared_ptr<ssl::context> contextWith(X509& certificate, EVP_PKEY& key)
{
    auto tls = std::make_shared<ssl::context>(ssl::context::tls_server);
    tls->set_options(ssl::context::no_tlsv1 | ssl::context::no_tlsv1_1);
    require(SSL_CTX_use_certificate(tls->native_handle(), &certificate) == 1 &&
            SSL_CTX_use_PrivateKey(tls->native_handle(), &key) == 1);
    return tls;
}
} // namespace

CertificateAuthority::CertificateAuthority(std::string crlUrl)
    : m_crlUrl(std::move(crlUrl)), m_key(createKey()), m_certificate(createAuthority(*m_key))
{}

std::string CertificateAuthority::pem() const
{
    return encoded(*m_certificate, PEM_write_bio_X509);
}

std::string CertificateAuthority::der() const
{
    return encoded(*m_certificate, i2d_X509_bio);
}

std::string CertificateAuthority::revocationListDer() const
{
    const auto list = owned(X509_CRL_new(), X509_CRL_free);
    require(X509_CRL_set_version(list.get(), X509_CRL_VERSION_2) == 1 &&
            X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(m_certificate.get())) == 1 &&
            X509_CRL_set1_lastUpdate(list.get(), daysFromNow(Validity().begin).get()) == 1 &&
            X509_CRL_set1_nextUpdate(list.get(), daysFromNow(Validity().end).get()) == 1);
    X509V3_CTX context{};
    X509V3_set_ctx(&context, m_certificate.get(), nullptr, nullptr, list.get(), 0);
    const auto keyId = createExtension(context, NID_authority_key_identifier, "keyid:always");
    require(X509_CRL_add_ext(list.get(), keyId.get(), -1) == 1 &&
            X509_CRL_add1_ext_i2d(list.get(), NID_crl_number, randomNumber().get(), 0, 0) == 1);
    sign(*list, *m_key);
    return encoded(*list, i2d_X509_CRL_bio);
}

const ServerCertificate& CertificateAuthority::certificate(CertificateKind kind)
{
    auto found = m_issued.find(kind);
    if (found == m_issued.end()) {
        found = m_issued.emplace(kind, issue(kind)).first;
    }
    return found->second;
}

ServerCertificate CertificateAuthority::issue(CertificateKind kind) const
{
    if (kind == CertificateKind::UnknownCa) {
        return CertificateAuthority(m_crlUrl).issue(CertificateKind::Good);
    }
    const bool isSelfSigned = kind == CertificateKind::SelfSigned;
    const Validity validity = kind == CertificateKind::Expired       ? Validity{-30, -1}
                              : kind == CertificateKind::NotYetValid ? Validity{1, 30}
                                                                     : Validity{};
    const std::string host = kind == CertificateKind::OtherHost ? "other.example" : "localhost";
    const auto key = createKey();
    const auto leaf = issued(host, validity, *key, isSelfSigned ? nullptr : m_certificate.get(),
                             isSelfSigned ? *key : *m_key,
                             {{NID_basic_constraints, "critical,CA:FALSE"},
                              {NID_key_usage, "critical,digitalSignature"},
                              {NID_ext_key_usage, "serverAuth"},
                              {NID_subject_alt_name, "DNS:" + host},
                              {NID_crl_distribution_points, "URI:" + m_crlUrl},
                              {NID_subject_key_identifier, "hash"},
                              {NID_authority_key_identifier, "keyid:always"}});
    return {encoded(*leaf, i2d_X509_bio), contextWith(*leaf, *key)};
}
} // namespace sandbox
