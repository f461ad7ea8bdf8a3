#include "ClientConfig.h"

#include "WindowsCalls.h"

#include <boost/asio/ssl/context.hpp>
#include <openssl/ssl.h>

#include <memory>
#include <system_error>

using Platform::CertificateHook;

namespace
{
void freeHook(void* /*parent*/, void* hook, CRYPTO_EX_DATA* /*data*/, int /*index*/, long /*argl*/,
              void* /*argp*/)
{
    const std::unique_ptr<CertificateHook> owner(static_cast<CertificateHook*>(hook));
}

/// Slot of an SSL_CTX that owns its hook: the context outlives every handshake that may still need it.
int hookSlot()
{
    static const int slot = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, &freeHook);
    return slot;
}

void showLeaf(X509* leaf, const CertificateHook& hook)
{
    unsigned char* encoded = nullptr;
    const int size = i2d_X509(leaf, &encoded);
    if (size < 0) {
        return;
    }
    const std::unique_ptr<unsigned char, void (*)(unsigned char*)> bytes(
        encoded, [](unsigned char* memory) { OPENSSL_free(memory); });
    const std::unique_ptr<const CERT_CONTEXT, BOOL (*)(PCCERT_CONTEXT)> certificate(
        CertCreateCertificateContext(X509_ASN_ENCODING, encoded, static_cast<DWORD>(size)),
        &CertFreeCertificateContext);
    hook(*certificate);
}

/// Shows the leaf to the hook and lets OpenSSL decide, as it would have without us.
int verifyChain(X509_STORE_CTX* store, void* /*argument*/)
{
    const auto* ssl =
        static_cast<SSL*>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
    const auto* hook = static_cast<CertificateHook*>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), hookSlot()));
    if (auto* leaf = X509_STORE_CTX_get0_cert(store); leaf != nullptr) {
        try {
            showLeaf(leaf, *hook);
        } catch (...) { // none may pass through OpenSSL's frames; unseen means untrusted
            return 0;
        }
    }
    return X509_verify_cert(store);
}
} // namespace

web::http::client::http_client_config Platform::makeClientConfig()
{
    return {};
}

void Platform::setCertificateHook(web::http::client::http_client_config& config, CertificateHook hook)
{
    config.set_ssl_context_callback([hook = std::move(hook)](boost::asio::ssl::context& context) {
        auto owned = std::make_unique<CertificateHook>(hook);
        if (SSL_CTX_set_ex_data(context.native_handle(), hookSlot(), owned.get()) != 1) {
            throw std::bad_alloc();
        }
        static_cast<void>(owned.release()); // freeHook owns it now
        SSL_CTX_set_cert_verify_callback(context.native_handle(), &verifyChain, nullptr);
    });
}
