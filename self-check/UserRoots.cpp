#include "UserRoots.h"

#include <windows.h>

#include <wincrypt.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace
{
struct CloseStore
{
    void operator()(void* store) const { CertCloseStore(store, 0); }
};

std::unique_ptr<void, CloseStore> rootsOfUser()
{
    const char* const roots = std::getenv("VANTRY_ROOTS");
    const bool ofMachine = roots != nullptr && std::string_view(roots) == "machine";
    std::unique_ptr<void, CloseStore> store(
        CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0,
                      ofMachine ? CERT_SYSTEM_STORE_LOCAL_MACHINE : CERT_SYSTEM_STORE_CURRENT_USER, L"Root"));
    if (!store) {
        throw std::runtime_error("CertOpenStore failed with " + std::to_string(GetLastError()));
    }
    return store;
}

PCCERT_CONTEXT findAuthority(HCERTSTORE store, PCCERT_CONTEXT previous)
{
    return CertFindCertificateInStore(store, X509_ASN_ENCODING, 0, CERT_FIND_SUBJECT_STR_W,
                                      L"Vantry Sandbox CA ", previous);
}
} // namespace

void trustByUser(const std::string& der)
{
    if (CertAddEncodedCertificateToStore(
            rootsOfUser().get(), X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(der.data()),
            static_cast<DWORD>(der.size()), CERT_STORE_ADD_USE_EXISTING, nullptr) == FALSE) {
        throw std::runtime_error("the certificate was not added: error " + std::to_string(GetLastError()));
    }
}

int removeSandboxAuthorities()
{
    const auto store = rootsOfUser();
    while (const auto* authority = findAuthority(store.get(), nullptr)) {
        if (CertDeleteCertificateFromStore(authority) == FALSE) { // which frees the context, too
            break;                                                // the person has refused
        }
    }
    CertControlStore(store.get(), 0, CERT_STORE_CTRL_COMMIT, nullptr); // closing alone does not do it in Wine
    const auto reopened = rootsOfUser();
    int left = 0;
    for (const auto* found = findAuthority(reopened.get(), nullptr); found != nullptr;
         found = findAuthority(reopened.get(), found)) {
        ++left;
    }
    return left;
}
