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

bool mayGoOn(X509* leaf, const CertificateHook& hook)
{
    unsigned char* encoded = nullptr;
    const int size = i2d_X509(leaf, &encoded);
    if (size < 0) {
        return false;
    }
    const std::unique_ptr<unsigned char, void (*)(unsigned char*)> bytes(
        encoded, [](unsigned char* memory) { OPENSSL_free(memory); });
    const std::unique_ptr<const CERT_CONTEXT, BOOL (*)(PCCERT_CONTEXT)> certificate(
        CertCreateCertificateContext(X509_ASN_ENCODING, encoded, static_cast<DWORD>(size)),
        &CertFreeCertificateContext);
    return hook(*certificate);
}

/// Lets OpenSSL decide, as it would have without us, and then asks the hook about the leaf.
int verifyChain(X509_STORE_CTX* store, void* /*argument*/)
{
    if (X509_verify_cert(store) != 1) {
        return 0;
    }
    const auto* ssl =
        static_cast<SSL*>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
    const auto* hook = static_cast<CertificateHook*>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), hookSlot()));
    try {
        if (mayGoOn(X509_STORE_CTX_get0_cert(store), *hook)) {
            return 1;
        }
    } catch (...) { // none may pass through OpenSSL's frames; unseen means untrusted
    }
    X509_STORE_CTX_set_error(store, X509_V_ERR_APPLICATION_VERIFICATION);
    return 0;
}

/// A server that renegotiates would have a second handshake, and a second certificate, in a connection whose
/// first one was accepted.
void harden(SSL_CTX* context)
{
    SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
}
} // namespace

web::http::client::http_client_config Platform::makeClientConfig()
{
    web::http::client::http_client_config config;
    config.set_ssl_context_callback(
        [](boost::asio::ssl::context& context) { harden(context.native_handle()); });
    return config;
}

void Platform::setCertificateHook(web::http::client::http_client_config& config, CertificateHook hook)
{
    config.set_ssl_context_callback([hook = std::move(hook)](boost::asio::ssl::context& context) {
        harden(context.native_handle());
        auto owned = std::make_unique<CertificateHook>(hook);
        if (SSL_CTX_set_ex_data(context.native_handle(), hookSlot(), owned.get()) != 1) {
            throw std::bad_alloc();
        }
        static_cast<void>(owned.release()); // freeHook owns it now
        SSL_CTX_set_cert_verify_callback(context.native_handle(), &verifyChain, nullptr);
    });
}
