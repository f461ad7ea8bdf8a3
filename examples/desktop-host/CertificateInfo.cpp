#include "CertificateInfo.h"

#include <bcrypt.h>
#include <wincrypt.h>

#include <array>
#include <stdexcept>

namespace
{
[[noreturn]] void throwUnreadable()
{
    throw std::runtime_error("the server's certificate cannot be read");
}

std::wstring nameText(CERT_NAME_BLOB name)
{
    constexpr DWORD form = CERT_X500_NAME_STR;
    std::wstring text(CertNameToStrW(X509_ASN_ENCODING, &name, form, nullptr, 0), L'\0');
    CertNameToStrW(X509_ASN_ENCODING, &name, form, text.data(), static_cast<DWORD>(text.size()));
    return text.c_str(); // without the terminating zero
}

/// The person's own day and way of writing it.
std::wstring dayText(const FILETIME& time)
{
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    std::array<wchar_t, 80> text{};
    if (FileTimeToSystemTime(&time, &utc) == FALSE ||
        SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) == FALSE ||
        GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_LONGDATE, &local, nullptr, text.data(),
                        static_cast<int>(text.size()), nullptr) == 0) {
        throwUnreadable();
    }
    return text.data();
}

std::wstring fingerprintText(const CERT_CONTEXT& certificate)
{
    std::array<BYTE, 32> digest{};
    auto size = static_cast<DWORD>(digest.size());
    if (CryptHashCertificate2(BCRYPT_SHA256_ALGORITHM, 0, nullptr, certificate.pbCertEncoded,
                              certificate.cbCertEncoded, digest.data(), &size) == FALSE) {
        throwUnreadable();
    }
    std::wstring text;
    for (const BYTE byte : digest) {
        constexpr const wchar_t* digits = L"0123456789ABCDEF";
        text += text.empty() ? L"" : L":";
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}
} // namespace

CertificateInfo readCertificate(const CERT_CONTEXT& certificate)
{
    const CERT_INFO& info = *certificate.pCertInfo;
    return {nameText(info.Subject), nameText(info.Issuer),
            L"from " + dayText(info.NotBefore) + L"\r\nuntil " + dayText(info.NotAfter),
            fingerprintText(certificate)};
}
