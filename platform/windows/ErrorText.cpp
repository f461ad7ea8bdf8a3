#include "ErrorText.h"

#include "AnsiText.h"

#include <windows.h>
#include <winhttp.h>

namespace
{
/// What a request can end with. Null for other codes.
const wchar_t* textOfWinHttp(int code)
{
    switch (code) {
    case ERROR_WINHTTP_OUT_OF_HANDLES:
        return L"This system is out of handles for connections.";
    case ERROR_WINHTTP_TIMEOUT:
        return L"The server did not answer in time.";
    case ERROR_WINHTTP_INTERNAL_ERROR:
        return L"An internal error of WinHTTP has ended the request.";
    case ERROR_WINHTTP_INVALID_URL:
        return L"The server's address is not valid.";
    case ERROR_WINHTTP_UNRECOGNIZED_SCHEME:
        return L"The server's address begins with neither http nor https.";
    case ERROR_WINHTTP_NAME_NOT_RESOLVED:
        return L"The server's name could not be resolved. Check its spelling and the network.";
    case ERROR_WINHTTP_SHUTDOWN:
        return L"WinHTTP is being shut down.";
    case ERROR_WINHTTP_LOGIN_FAILURE:
        return L"The login was refused.";
    case ERROR_WINHTTP_OPERATION_CANCELLED:
        return L"The request was cancelled.";
    case ERROR_WINHTTP_CANNOT_CONNECT:
        return L"Could not connect to the server. Check its address and port, and whether it is running.";
    case ERROR_WINHTTP_CONNECTION_ERROR:
        return L"The connection to the server was reset or ended early.";
    case ERROR_WINHTTP_RESEND_REQUEST:
        return L"The request would have to be sent again.";
    case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
        return L"The server's certificate has expired or is not valid yet.";
    case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
        return L"The server's certificate was issued for another server.";
    case ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED:
        return L"The server requires a client certificate, which is not supported.";
    case ERROR_WINHTTP_SECURE_INVALID_CA:
        return L"The server's certificate is not trusted: its authority is unknown to this system.";
    case ERROR_WINHTTP_SECURE_CERT_REV_FAILED:
        return L"Could not check whether the server's certificate has been revoked.";
    case ERROR_WINHTTP_HEADER_NOT_FOUND:
        return L"The server's answer lacks a header.";
    case ERROR_WINHTTP_INVALID_SERVER_RESPONSE:
        return L"The server's answer is not valid HTTP.";
    case ERROR_WINHTTP_INVALID_HEADER:
        return L"A header is not valid.";
    case ERROR_WINHTTP_REDIRECT_FAILED:
        return L"The server's redirection was not followed.";
    case ERROR_WINHTTP_SECURE_CHANNEL_ERROR:
    case ERROR_WINHTTP_SECURE_FAILURE:
        return L"No secure connection to the server: its certificate is not trusted, or it does not answer "
               L"with a version of TLS that this system supports.";
    case ERROR_WINHTTP_BAD_AUTO_PROXY_SCRIPT:
    case ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT:
    case ERROR_WINHTTP_SCRIPT_EXECUTION_ERROR:
        return L"The script that configures this system's proxy could not be loaded or has failed.";
    case ERROR_WINHTTP_AUTO_PROXY_SERVICE_ERROR:
    case ERROR_WINHTTP_AUTODETECTION_FAILED:
        return L"This system's proxy could not be detected.";
    case ERROR_WINHTTP_SECURE_INVALID_CERT:
        return L"The server's certificate is not valid.";
    case ERROR_WINHTTP_SECURE_CERT_REVOKED:
        return L"The server's certificate has been revoked.";
    case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE:
        return L"The server's certificate is not one for servers.";
    case ERROR_WINHTTP_HEADER_COUNT_EXCEEDED:
    case ERROR_WINHTTP_HEADER_SIZE_OVERFLOW:
        return L"The headers of the server's answer are too many or too long.";
    case ERROR_WINHTTP_CHUNKED_ENCODING_HEADER_SIZE_OVERFLOW:
    case ERROR_WINHTTP_RESPONSE_DRAIN_OVERFLOW:
        return L"The server's answer is too long.";
    case ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED_PROXY:
        return L"The proxy requires a client certificate, which is not supported.";
    case ERROR_WINHTTP_SECURE_FAILURE_PROXY:
        return L"No secure connection to the proxy.";
    default:
        return nullptr;
    }
}
} // namespace

std::wstring Platform::errorText(const std::error_code& code)
{
    const auto text = code.message();
    // What the REST SDK says of a number that the system has no text for: in Wine, each of WinHTTP's.
    if (text == "Unable to get an error message for error code: " + std::to_string(code.value()) + '.') {
        if (const auto* own = textOfWinHttp(code.value()); own != nullptr) {
            return own;
        }
    }
    return fromAnsi(text);
}
