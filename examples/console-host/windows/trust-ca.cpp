// Puts the certificate of a CA into the list of those that the current user trusts.
#include <windows.h>

#include <shellapi.h>
#include <wincrypt.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{
std::filesystem::path certificatePath()
{
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                &LocalFree);
    if (!words || count != 2) {
        throw std::runtime_error("usage: vantry-trust-ca CA.der");
    }
    return words.get()[1];
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read the certificate");
    }
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A certificate that was there already is as good as one that was added.
void trust(const std::string& certificate)
{
    const auto close = [](HCERTSTORE store) { CertCloseStore(store, 0); };
    const std::unique_ptr<void, decltype(close)> store(
        CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root"), close);
    if (!store || CertAddEncodedCertificateToStore(store.get(), X509_ASN_ENCODING,
                                                   reinterpret_cast<const BYTE*>(certificate.data()),
                                                   static_cast<DWORD>(certificate.size()),
                                                   CERT_STORE_ADD_REPLACE_EXISTING, nullptr) == FALSE) {
        throw std::runtime_error("cannot add the certificate: error " + std::to_string(GetLastError()));
    }
}
} // namespace

int main()
{
    try {
        trust(readFile(certificatePath()));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantry-trust-ca: %s\n", error.what());
        return 1;
    }
}
