#include "CertificateInfo.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <stdexcept>

namespace
{
[[noreturn]] void throwUnreadable()
{
    throw std::runtime_error("the server's certificate cannot be read");
}

std::string nameText(const X509_NAME* name)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new(BIO_s_mem()), &BIO_free);
    // RFC 2253 escapes control characters; its escaping of all that is not ASCII is left out
    constexpr unsigned long flags = XN_FLAG_ONELINE & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB);
    if (!text || X509_NAME_print_ex(text.get(), name, 0, flags) < 0) {
        throwUnreadable();
    }
    const char* data = nullptr;
    const auto size = BIO_get_mem_data(text.get(), &data);
    return {data, static_cast<std::size_t>(size)};
}

std::tm utcTime(const ASN1_TIME* time)
{
    std::tm utc{};
    if (ASN1_TIME_to_tm(time, &utc) != 1) {
        throwUnreadable();
    }
    return utc;
}
} // namespace

CertificateInfo readCertificate(const CERT_CONTEXT& certificate)
{
    const unsigned char* encoded = certificate.pbCertEncoded;
    const std::unique_ptr<X509, decltype(&X509_free)> decoded(
        d2i_X509(nullptr, &encoded, static_cast<long>(certificate.cbCertEncoded)), &X509_free);
    if (!decoded) {
        throwUnreadable();
    }
    CertificateInfo info{nameText(X509_get_subject_name(decoded.get())),
                         nameText(X509_get_issuer_name(decoded.get())),
                         {},
                         utcTime(X509_get0_notBefore(decoded.get())),
                         utcTime(X509_get0_notAfter(decoded.get()))};
    if (X509_digest(decoded.get(), EVP_sha256(), info.fingerprint.data(), nullptr) != 1) {
        throwUnreadable();
    }
    return info;
}
