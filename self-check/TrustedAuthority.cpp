#include "TrustedAuthority.h"

#include "UserRoots.h"

#include <windows.h>

#include <wincrypt.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{
std::string readCertificate(const std::string& pemFile)
{
    std::ifstream file(pemFile, std::ios::binary);
    const std::string pem{std::istreambuf_iterator<char>(file), {}};
    std::string der(pem.size(), '\0');
    auto size = static_cast<DWORD>(der.size());
    if (CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                             reinterpret_cast<BYTE*>(der.data()), &size, nullptr, nullptr) == FALSE) {
        throw std::runtime_error("cannot read the certificate " + pemFile);
    }
    der.resize(size);
    return der;
}
} // namespace

TrustedAuthority::TrustedAuthority(const std::string& pemFile)
{
    trustByUser(readCertificate(pemFile));
}

TrustedAuthority::~TrustedAuthority()
{
    try {
        removeSandboxAuthorities();
    } catch (const std::exception&) {
        // The self-check removes what is left once more at its end, and tells of it.
    }
}
