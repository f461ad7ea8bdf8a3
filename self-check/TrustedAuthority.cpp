#include "TrustedAuthority.h"

#include <windows.h>

#include <wincrypt.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <vector>

namespace
{
constexpr const wchar_t* authorityName = L"Vantry Sandbox CA ";

struct CloseStore
{
    void operator()(void* store) const { CertCloseStore(store, 0); }
};

std::unique_ptr<void, CloseStore> rootsOfUser()
{
    std::unique_ptr<void, CloseStore> store(
        CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root"));
    if (!store) {
        throw std::runtime_error("CertOpenStore failed with " + std::to_string(GetLastError()));
    }
    return store;
}

std::vector<BYTE> readCertificate(const std::string& pemFile)
{
    std::ifstream file(pemFile, std::ios::binary);
    const std::string pem{std::istreambuf_iterator<char>(file), {}};
    std::vector<BYTE> der(pem.size());
    auto size = static_cast<DWORD>(der.size());
    if (CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                             der.data(), &size, nullptr, nullptr) == FALSE) {
        throw std::runtime_error("cannot read the certificate " + pemFile);
    }
    der.resize(size);
    return der;
}

PCCERT_CONTEXT findAuthority(HCERTSTORE store, PCCERT_CONTEXT previous)
{
    return CertFindCertificateInStore(store, X509_ASN_ENCODING, 0, CERT_FIND_SUBJECT_STR_W, authorityName,
                                      previous);
}
} // namespace

TrustedAuthority::TrustedAuthority(const std::string& pemFile)
{
    const auto der = readCertificate(pemFile);
    if (CertAddEncodedCertificateToStore(rootsOfUser().get(), X509_ASN_ENCODING, der.data(),
                                         static_cast<DWORD>(der.size()), CERT_STORE_ADD_NEW,
                                         nullptr) == FALSE) {
        throw std::runtime_error("the certificate was not added: error " + std::to_string(GetLastError()));
    }
}

TrustedAuthority::~TrustedAuthority()
{
    removeSandboxAuthorities();
}

int removeSandboxAuthorities()
{
    const auto store = rootsOfUser();
    while (const auto* authority = findAuthority(store.get(), nullptr)) {
        if (CertDeleteCertificateFromStore(authority) == FALSE) { // which frees the context, too
            break;                                                // the person has refused
        }
    }
    const auto reopened = rootsOfUser();
    int left = 0;
    for (const auto* found = findAuthority(reopened.get(), nullptr); found != nullptr;
         found = findAuthority(reopened.get(), found)) {
        ++left;
    }
    return left;
}
