#include "Certificates.h"

#include <openssl/bn.h>
#include <openssl/ecdsa.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <initializer_list>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

namespace sandbox
{
namespace
{
template <auto Free>
struct Release
{
    template <typename Object>
    void operator()(Object* object) const
    {
        Free(object);
    }
};

using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using RevocationList = std::unique_ptr<X509_CRL, Release<X509_CRL_free>>;
using Signature = std::unique_ptr<ECDSA_SIG, Release<ECDSA_SIG_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using Number = std::unique_ptr<BIGNUM, Release<BN_free>>;
using Integer = std::unique_ptr<ASN1_INTEGER, Release<ASN1_INTEGER_free>>;
using Time = std::unique_ptr<ASN1_TIME, Release<ASN1_TIME_free>>;
using Memory = std::unique_ptr<BIO, Release<BIO_free>>;

using ExtensionTexts = std::initializer_list<std::pair<int, std::string>>;

constexpr int serialBits = 127;

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

Key createKey()
{
    Key key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
    require(key != nullptr);
    return key;
}

Integer randomInteger()
{
    const Number number(BN_new());
    require(number != nullptr && BN_rand(number.get(), serialBits, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1);
    Integer integer(BN_to_ASN1_INTEGER(number.get(), nullptr));
    require(integer != nullptr);
    return integer;
}

Time daysFromNow(int days)
{
    Time time(X509_time_adj_ex(nullptr, days, 0, nullptr));
    require(time != nullptr);
    return time;
}

Extension createExtension(X509V3_CTX& context, int nid, const std::string& text)
{
    Extension extension(X509V3_EXT_conf_nid(nullptr, &context, nid, text.c_str()));
    require(extension != nullptr);
    return extension;
}

void addExtensions(X509& subject, X509& issuer, ExtensionTexts extensions)
{
    X509V3_CTX context{};
    X509V3_set_ctx(&context, &issuer, &subject, nullptr, nullptr, 0);
    for (const auto& [nid, text] : extensions) {
        require(X509_add_ext(&subject, createExtension(context, nid, text).get(), -1) == 1);
    }
}

Certificate createUnsigned(const std::string& commonName, EVP_PKEY& key, Validity validity = {})
{
    Certificate certificate(X509_new());
    require(certificate != nullptr);
    X509_NAME* subject = X509_get_subject_name(certificate.get());
    require(X509_set_version(certificate.get(), X509_VERSION_3) == 1 &&
            X509_set_serialNumber(certificate.get(), randomInteger().get()) == 1 &&
            X509_set1_notBefore(certificate.get(), daysFromNow(validity.begin).get()) == 1 &&
            X509_set1_notAfter(certificate.get(), daysFromNow(validity.end).get()) == 1 &&
            X509_set_pubkey(certificate.get(), &key) == 1 &&
            X509_NAME_add_entry_by_NID(subject, NID_commonName, MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(commonName.data()),
                                       static_cast<int>(commonName.size()), -1, 0) == 1);
    return certificate;
}

void certificateSignature(const X509* certificate, const ASN1_BIT_STRING** signature)
{
    X509_get0_signature(signature, nullptr, certificate);
}

void listSignature(const X509_CRL* list, const ASN1_BIT_STRING** signature)
{
    X509_CRL_get0_signature(list, signature, nullptr);
}

/// Whether both numbers of an ECDSA signature are as long as the curve's: DER leaves out leading zeros, and
/// Wine then takes the signature for a wrong one.
bool hasFullLength(const ASN1_BIT_STRING& signature)
{
    constexpr int curveBytes = 32;
    const auto* next = ASN1_STRING_get0_data(&signature);
    const Signature numbers(d2i_ECDSA_SIG(nullptr, &next, ASN1_STRING_length(&signature)));
    require(numbers != nullptr);
    return BN_num_bytes(ECDSA_SIG_get0_r(numbers.get())) == curveBytes &&
           BN_num_bytes(ECDSA_SIG_get0_s(numbers.get())) == curveBytes;
}

/// Signs with `Sign` until the signature, read with `Get`, has its full length: once, nearly always.
template <auto Sign, auto Get, typename Object>
void signFully(Object& object, EVP_PKEY& key)
{
    const ASN1_BIT_STRING* signature = nullptr;
    do {
        require(Sign(&object, &key, EVP_sha256()) > 0);
        Get(&object, &signature);
    } while (!hasFullLength(*signature));
}

void sign(X509& certificate, X509& issuer, EVP_PKEY& issuerKey)
{
    require(X509_set_issuer_name(&certificate, X509_get_subject_name(&issuer)) == 1);
    signFully<X509_sign, certificateSignature>(certificate, issuerKey);
}

Certificate createAuthority(EVP_PKEY& key)
{
    // A name of its own, since systems look for an issuer by its name: one that still trusts an earlier
    // sandbox's CA must not take it for this one.
    Certificate authority =
        createUnsigned("Vantry Sandbox CA " + std::to_string(std::random_device()()), key);
    addExtensions(*authority, *authority,
                  {{NID_basic_constraints, "critical,CA:TRUE"},
                   {NID_key_usage, "critical,keyCertSign,cRLSign"},
                   {NID_subject_key_identifier, "hash"},
                   {NID_authority_key_identifier, "keyid:always"}});
    sign(*authority, *authority, key);
    return authority;
}

Validity validityOf(CertificateKind kind)
{
    switch (kind) {
    case CertificateKind::Expired:
        return {-30, -1};
    case CertificateKind::NotYetValid:
        return {1, 30};
    default:
        return {};
    }
}

/// A leaf that still has to be signed by `issuer`; without one by its own key.
Certificate createLeaf(CertificateKind kind, EVP_PKEY& key, X509* issuer, const std::string& crlUrl)
{
    const std::string host = kind == CertificateKind::OtherHost ? "other.example" : "localhost";
    Certificate leaf = createUnsigned(host, key, validityOf(kind));
    addExtensions(*leaf, issuer != nullptr ? *issuer : *leaf,
                  {{NID_basic_constraints, "critical,CA:FALSE"},
                   {NID_key_usage, "critical,digitalSignature"},
                   {NID_ext_key_usage, "serverAuth"},
                   {NID_subject_alt_name, "DNS:" + host},
                   {NID_crl_distribution_points, "URI:" + crlUrl},
                   {NID_subject_key_identifier, "hash"},
                   {NID_authority_key_identifier, "keyid:always"}});
    return leaf;
}

RevocationList createRevocationList(X509& authority, EVP_PKEY& authorityKey)
{
    RevocationList list(X509_CRL_new());
    require(list != nullptr);
    require(X509_CRL_set_version(list.get(), X509_CRL_VERSION_2) == 1 &&
            X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(&authority)) == 1 &&
            X509_CRL_set1_lastUpdate(list.get(), daysFromNow(Validity().begin).get()) == 1 &&
            X509_CRL_set1_nextUpdate(list.get(), daysFromNow(Validity().end).get()) == 1);
    X509V3_CTX context{};
    X509V3_set_ctx(&context, &authority, nullptr, nullptr, list.get(), 0);
    const Extension keyId = createExtension(context, NID_authority_key_identifier, "keyid:always");
    require(X509_CRL_add_ext(list.get(), keyId.get(), -1) == 1 &&
            X509_CRL_add1_ext_i2d(list.get(), NID_crl_number, randomInteger().get(), 0, 0) == 1);
    signFully<X509_CRL_sign, listSignature>(*list, authorityKey);
    return list;
}

template <auto Encode, typename Object>
std::string toDer(const Object& object)
{
    const int length = Encode(&object, nullptr);
    require(length > 0);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    auto* end = reinterpret_cast<unsigned char*>(bytes.data());
    Encode(&object, &end);
    return bytes;
}

template <typename Write>
std::string toPem(Write write)
{
    const Memory memory(BIO_new(BIO_s_mem()));
    require(memory != nullptr && write(memory.get()) == 1);
    char* text = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

std::string toPem(X509& certificate)
{
    return toPem([&certificate](BIO* memory) { return PEM_write_bio_X509(memory, &certificate); });
}

std::string toPem(EVP_PKEY& key)
{
    return toPem([&key](BIO* memory) {
        return PEM_write_bio_PrivateKey(memory, &key, nullptr, nullptr, 0, nullptr, nullptr);
    });
}

} // namespace

CertificateAuthority::CertificateAuthority(std::string crlUrl)
    : m_crlUrl(std::move(crlUrl)), m_key(createKey()), m_certificate(createAuthority(*m_key))
{}

std::string CertificateAuthority::pem() const
{
    return toPem(*m_certificate);
}

std::string CertificateAuthority::der() const
{
    return toDer<i2d_X509>(*m_certificate);
}

std::string CertificateAuthority::revocationListDer() const
{
    return toDer<i2d_X509_CRL>(*createRevocationList(*m_certificate, *m_key));
}

ServerCertificate CertificateAuthority::issue(CertificateKind kind) const
{
    if (kind == CertificateKind::UnknownCa) {
        return CertificateAuthority(m_crlUrl).issue(CertificateKind::Good);
    }
    const bool isSelfSigned = kind == CertificateKind::SelfSigned;
    const Key key = createKey();
    const Certificate leaf = createLeaf(kind, *key, isSelfSigned ? nullptr : m_certificate.get(), m_crlUrl);
    if (isSelfSigned) {
        sign(*leaf, *leaf, *key);
    } else {
        sign(*leaf, *m_certificate, *m_key);
    }
    return {toPem(*leaf), toDer<i2d_X509>(*leaf), toPem(*key)};
}
} // namespace sandbox
