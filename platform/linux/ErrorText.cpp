#include "ErrorText.h"

#include "AnsiText.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

namespace
{
/// Null for what OpenSSL's own words say as well.
const char* textOfTlsReason(int reason)
{
    switch (reason) {
    case SSL_R_CERTIFICATE_VERIFY_FAILED:
        return "The server's certificate is not trusted. Its authority is unknown to this system, it has "
               "expired or is not valid yet, or it was issued for another server.";
    case SSL_R_HTTP_REQUEST:
    case SSL_R_PACKET_LENGTH_TOO_LONG:
    case SSL_R_WRONG_VERSION_NUMBER:
        return "The server does not answer with TLS. Check the port, or whether the address should begin "
               "with http.";
    case SSL_R_TLSV1_ALERT_PROTOCOL_VERSION:
    case SSL_R_UNSUPPORTED_PROTOCOL:
        return "This system and the server support no common version of TLS.";
    case SSL_R_NO_SHARED_CIPHER:
    case SSL_R_SSLV3_ALERT_HANDSHAKE_FAILURE:
    case SSL_R_TLSV1_ALERT_INSUFFICIENT_SECURITY:
        return "This system and the server could not agree on how to secure the connection.";
    case SSL_R_TLSV13_ALERT_CERTIFICATE_REQUIRED:
        return "The server requires a client certificate, which is not supported.";
    case SSL_R_TLSV1_UNRECOGNIZED_NAME:
        return "The server does not know the name under which it was addressed.";
    case SSL_R_UNEXPECTED_EOF_WHILE_READING:
        return "The server ended the secure connection early.";
    default:
        return nullptr;
    }
}

/// Empty if the number is none of OpenSSL's.
std::string textOfOpenSsl(unsigned code)
{
    OPENSSL_init_ssl(OPENSSL_INIT_LOAD_SSL_STRINGS, nullptr);
    const char* reason = ERR_reason_error_string(code);
    if (reason == nullptr) {
        return {};
    }
    if (ERR_GET_LIB(code) == ERR_LIB_SSL) {
        if (const char* text = textOfTlsReason(ERR_GET_REASON(code)); text != nullptr) {
            return text;
        }
    }
    return std::string("No secure connection to the server: ") + reason + '.';
}
} // namespace

std::wstring Platform::errorText(const std::error_code& code)
{
    const auto text = code.message();
    if (text !=
        "Unknown error " + std::to_string(code.value())) { // what the C library says of any other number
        return fromAnsi(text);
    }
    // The REST SDK passes on the number of any failure, whoever has numbered it.
    const auto own = textOfOpenSsl(static_cast<unsigned>(code.value()));
    return fromAnsi(own.empty() ? text : own);
}
