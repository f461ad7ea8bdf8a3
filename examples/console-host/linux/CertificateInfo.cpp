#include "CertificateInfo.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <array>
#include <ctime>
#include <iomanip>
#include <memory>
#include <sstream>
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

std::string timeText(const ASN1_TIME* time)
{
    std::tm utc{};
    if (ASN1_TIME_to_tm(time, &utc) != 1) {
        throwUnreadable();
    }
    std::ostringstream text;
    text << std::put_time(&utc, "%Y-%m-%d %H:%M UTC");
    return text.str();
}

std::string fingerprintText(const X509* certificate)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    std::array<char, digest.size() * 3> text{}; // two digits and a colon, or the zero at the end, each
    if (X509_digest(certificate, EVP_sha256(), digest.data(), &size) != 1 ||
        OPENSSL_buf2hexstr_ex(text.data(), text.size(), nullptr, digest.data(), size, ':') != 1) {
        throwUnreadable();
    }
    return text.data();
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
    return {nameText(X509_get_subject_name(decoded.get())), nameText(X509_get_issuer_name(decoded.get())),
            fingerprintText(decoded.get()), timeText(X509_get0_notBefore(decoded.get())),
            timeText(X509_get0_notAfter(decoded.get()))};
}
