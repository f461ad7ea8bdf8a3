#include "ClientConfig.h"

#include "CertificateHooks.h"
#include "ModuleReferences.h"

#include <winhttp.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <system_error>

namespace
{
using Platform::SharedHook;

/// Bytes before an answer's body. WinHTTP's own limit is 64 KiB.
constexpr DWORD headerSizeLimit = 1024 * 1024;

/// The REST SDK's own callback, the same for all of its requests.
std::atomic<WINHTTP_STATUS_CALLBACK> sdkCallback = nullptr;

/// Has the REST SDK end a request as if WinHTTP had told it of the error.
void failRequest(HINTERNET request, DWORD_PTR context, DWORD_PTR function, DWORD error)
{
    WINHTTP_ASYNC_RESULT failure{function, error};
    sdkCallback.load()(request, context, WINHTTP_CALLBACK_STATUS_REQUEST_ERROR, &failure, sizeof(failure));
}

bool isOpen(HINTERNET request)
{
    DWORD type = 0;
    DWORD size = sizeof(type);
    return WinHttpQueryOption(request, WINHTTP_OPTION_HANDLE_TYPE, &type, &size) != FALSE;
}

/// Ends a request whose connection is there, before anything of it is sent. The REST SDK closes the handle
/// when nothing refers to the request any more: that is now, unless the thread that began it is still on its
/// way out.
void refuseConnection(HINTERNET request, DWORD_PTR context)
{
    failRequest(request, context, API_SEND_REQUEST, ERROR_WINHTTP_CONNECTION_ERROR);
    for (int looks = 0; looks < 100 && isOpen(request); ++looks) {
        Sleep(10);
    }
}

bool mayBeSent(HINTERNET request) noexcept
{
    try {
        return Platform::showCertificate(request);
    } catch (...) { // the certificate could not be looked at or kept
        return false;
    }
}

/// Stands before the REST SDK's own callback on each request handle. No exception may pass through WinHTTP:
/// one of the REST SDK (a status code that is no number) fails the request instead of the process.
void CALLBACK requestStatus(HINTERNET request, DWORD_PTR context, DWORD status, LPVOID information,
                            DWORD length) noexcept
{
    try {
        if (status == WINHTTP_CALLBACK_STATUS_SENDING_REQUEST && !mayBeSent(request)) {
            refuseConnection(request, context);
            return;
        }
        sdkCallback.load()(request, context, status, information, length);
    } catch (...) {
        failRequest(request, context, API_RECEIVE_RESPONSE, ERROR_WINHTTP_INVALID_SERVER_RESPONSE);
    }
    if (status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING) {
        Platform::releaseModuleSoon(); // the last callback of this request
    }
}

/// The connection's handle would call back too when it closes, after the request and unwatched.
void silenceConnection(HINTERNET request)
{
    HINTERNET connection = nullptr;
    DWORD size = sizeof(connection);
    // ERROR_WINHTTP_INCORRECT_HANDLE_TYPE: not for a request
    if (WinHttpQueryOption(request, WINHTTP_OPTION_PARENT_HANDLE, &connection, &size) != FALSE) {
        WinHttpSetStatusCallback(connection, nullptr, WINHTTP_CALLBACK_FLAG_ALL_NOTIFICATIONS, 0);
    }
}

bool takesOption(HINTERNET handle, DWORD option, DWORD value)
{
    return WinHttpSetOption(handle, option, &value, sizeof(value)) != FALSE;
}

void setOption(HINTERNET handle, DWORD option, DWORD value)
{
    if (!takesOption(handle, option, value)) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "WinHttpSetOption");
    }
}

/// After the REST SDK's own choice, which goes back to SSL 3.
void speakCurrentTls(HINTERNET session)
{
    constexpr DWORD current = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2 | WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_3;
    if (!takesOption(session, WINHTTP_OPTION_SECURE_PROTOCOLS, current)) { // an older Windows
        setOption(session, WINHTTP_OPTION_SECURE_PROTOCOLS, WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2);
    }
}

void watch(HINTERNET request, std::chrono::milliseconds timeout, const SharedHook& hook)
{
    // What the REST SDK asked for at the session; it still needs all of it.
    constexpr DWORD flags = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                            WINHTTP_CALLBACK_FLAG_SECURE_FAILURE | WINHTTP_CALLBACK_FLAG_SEND_REQUEST |
                            WINHTTP_CALLBACK_FLAG_REDIRECT;
    // A kept connection may have been closed by the server in the meantime: that fails the next operation, or
    // has WinHTTP send its request twice.
    setOption(request, WINHTTP_OPTION_DISABLE_FEATURE, WINHTTP_DISABLE_KEEP_ALIVE);
    // The one wait that the REST SDK does not limit: 90 s for an answer's headers, without end in Wine.
    setOption(request, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, static_cast<DWORD>(timeout.count()));
    // No server is given what the Windows user logs on with; the default trusts those of the intranet.
    setOption(request, WINHTTP_OPTION_AUTOLOGON_POLICY, WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH);
    setOption(request, WINHTTP_OPTION_MAX_RESPONSE_HEADER_SIZE, headerSizeLimit);
    Platform::wantCertificate(request, hook);
    // No notification comes before the request is sent, which is after this.
    auto* const previous = WinHttpSetStatusCallback(request, &requestStatus, flags, 0);
    if (previous == WINHTTP_INVALID_STATUS_CALLBACK) {
        // ERROR_WINHTTP_INCORRECT_HANDLE_TYPE, ERROR_WINHTTP_INTERNAL_ERROR, ERROR_NOT_ENOUGH_MEMORY
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "WinHttpSetStatusCallback");
    }
    sdkCallback = previous;
    Platform::holdModule();
    silenceConnection(request);
}

void watchRequests(web::http::client::http_client_config& config, SharedHook hook)
{
    const auto timeout = config.timeout<std::chrono::milliseconds>();
    config.set_nativehandle_options(
        [timeout, hook = std::move(hook)](web::http::client::native_handle request) {
            watch(static_cast<HINTERNET>(request), timeout, hook);
        });
}
} // namespace

web::http::client::http_client_config Platform::makeClientConfig()
{
    web::http::client::http_client_config config;
    config.set_nativesessionhandle_options(
        [](web::http::client::native_handle session) { speakCurrentTls(static_cast<HINTERNET>(session)); });
    watchRequests(config, nullptr);
    return config;
}

void Platform::setCertificateHook(web::http::client::http_client_config& config, CertificateHook hook)
{
    watchRequests(config, std::make_shared<CertificateHook>(std::move(hook)));
}
