#include "CertificateInfo.h"
#include "Text.h"

#include <windows.h>

#include <bcrypt.h>
#include <wincrypt.h>

#include <stdexcept>

namespace
{
[[noreturn]] void throwUnreadable()
{
    throw std::runtime_error("the server's certificate cannot be read");
}

std::string nameText(CERT_NAME_BLOB name)
{
    std::wstring text(CertNameToStrW(X509_ASN_ENCODING, &name, CERT_X500_NAME_STR, nullptr, 0), L'\0');
    CertNameToStrW(X509_ASN_ENCODING, &name, CERT_X500_NAME_STR, text.data(),
                   static_cast<DWORD>(text.size()));
    return toTerminal(text.c_str());
}

std::tm utcTime(const FILETIME& time)
{
    SYSTEMTIME utc{};
    if (FileTimeToSystemTime(&time, &utc) == FALSE) {
        throwUnreadable();
    }
    std::tm parts{};
    parts.tm_year = utc.wYear - 1900;
    parts.tm_mon = utc.wMonth - 1;
    parts.tm_mday = utc.wDay;
    parts.tm_hour = utc.wHour;
    parts.tm_min = utc.wMinute;
    return parts;
}
} // namespace

CertificateInfo readCertificate(const CERT_CONTEXT& certificate)
{
    const CERT_INFO& encoded = *certificate.pCertInfo;
    CertificateInfo info{nameText(encoded.Subject),
                         nameText(encoded.Issuer),
                         {},
                         utcTime(encoded.NotBefore),
                         utcTime(encoded.NotAfter)};
    auto size = static_cast<DWORD>(info.fingerprint.size());
    if (CryptHashCertificate2(BCRYPT_SHA256_ALGORITHM, 0, nullptr, certificate.pbCertEncoded,
                              certificate.cbCertEncoded, info.fingerprint.data(), &size) == FALSE) {
        throwUnreadable();
    }
    return info;
}
