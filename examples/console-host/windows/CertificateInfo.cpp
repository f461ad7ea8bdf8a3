#include "CertificateInfo.h"
#include "Text.h"

#include <windows.h>

#include <bcrypt.h>
#include <wincrypt.h>

#include <array>
#include <iomanip>
#include <sstream>
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

std::string timeText(const FILETIME& time)
{
    SYSTEMTIME utc{};
    if (FileTimeToSystemTime(&time, &utc) == FALSE) {
        throwUnreadable();
    }
    std::ostringstream text;
    text << std::setfill('0') << utc.wYear << '-' << std::setw(2) << utc.wMonth << '-' << std::setw(2)
         << utc.wDay << ' ' << std::setw(2) << utc.wHour << ':' << std::setw(2) << utc.wMinute << " UTC";
    return text.str();
}

std::string fingerprintText(const CERT_CONTEXT& certificate)
{
    std::array<BYTE, 32> digest{};
    auto size = static_cast<DWORD>(digest.size());
    if (CryptHashCertificate2(BCRYPT_SHA256_ALGORITHM, 0, nullptr, certificate.pbCertEncoded,
                              certificate.cbCertEncoded, digest.data(), &size) == FALSE) {
        throwUnreadable();
    }
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0');
    const char* separator = "";
    for (const unsigned byte : digest) {
        text << separator << std::setw(2) << byte;
        separator = ":";
    }
    return text.str();
}
} // namespace

CertificateInfo readCertificate(const CERT_CONTEXT& certificate)
{
    const CERT_INFO& info = *certificate.pCertInfo;
    return {nameText(info.Subject), nameText(info.Issuer), fingerprintText(certificate),
            timeText(info.NotBefore), timeText(info.NotAfter)};
}
