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

/// The REST SDK's own callback, the same for all of its requests.
std::atomic<WINHTTP_STATUS_CALLBACK> sdkCallback = nullptr;

/// Has the REST SDK end a request as if WinHTTP had told it that the answer is none.
void failRequest(HINTERNET request, DWORD_PTR context)
{
    WINHTTP_ASYNC_RESULT failure{API_RECEIVE_RESPONSE, ERROR_WINHTTP_INVALID_SERVER_RESPONSE};
    sdkCallback.load()(request, context, WINHTTP_CALLBACK_STATUS_REQUEST_ERROR, &failure, sizeof(failure));
}

/// Stands before the REST SDK's own callback on each request handle. No exception may pass through WinHTTP:
/// one of the hook (the certificate could not be kept) or of the REST SDK (a status code that is no number)
/// fails the request instead of the process.
void CALLBACK requestStatus(HINTERNET request, DWORD_PTR context, DWORD status, LPVOID information,
                            DWORD length) noexcept
{
    try {
        if (status == WINHTTP_CALLBACK_STATUS_SENDING_REQUEST && !Platform::showCertificate(request)) {
            failRequest(request, context);
            return;
        }
        sdkCallback.load()(request, context, status, information, length);
    } catch (...) {
        failRequest(request, context);
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

void setOption(HINTERNET request, DWORD option, DWORD value)
{
    if (WinHttpSetOption(request, option, &value, sizeof(value)) == FALSE) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "WinHttpSetOption");
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
    watchRequests(config, nullptr);
    return config;
}

void Platform::setCertificateHook(web::http::client::http_client_config& config, CertificateHook hook)
{
    watchRequests(config, std::make_shared<CertificateHook>(std::move(hook)));
}
