#include "CertificateHook.h"

#include "Module.h"
#include "ModuleRelease.h"
#include "WindowsCalls.h"

#include <winhttp.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>

using Platform::CertificateHook;

namespace
{
using SharedHook = std::shared_ptr<CertificateHook>;

/// The REST SDK's own callback, the same for all of its requests.
std::atomic<WINHTTP_STATUS_CALLBACK> sdkCallback = nullptr;

/// Hooks of the requests whose certificate is wanted. WinHTTP gives a handle's value to a new request before
/// it has told that the old one is closed: so an entry lasts until the value is used again, and nothing else
/// hangs on it.
std::mutex hooksMutex;
std::map<HINTERNET, SharedHook> hooks;

/// How long WinHTTP's thread has for the way out of our code after its last callback. There is no notice of
/// that moment to wait for; a thread needs microseconds.
constexpr LONGLONG releaseDelay = -250LL * 10'000; // 250 ms, relative, in units of 100 ns

void CALLBACK releaseModule(PTP_CALLBACK_INSTANCE instance, PVOID /*context*/, PTP_TIMER timer)
{
    FreeLibraryWhenCallbackReturns(instance, Platform::moduleHandle());
    CloseThreadpoolTimer(timer);
}

/// Gives back the reference that a request held.
void releaseModuleSoon()
{
    auto* timer = CreateThreadpoolTimer(&releaseModule, nullptr, nullptr);
    if (timer == nullptr) { // ERROR_NOT_ENOUGH_MEMORY: the module stays loaded, which is the safe side
        return;
    }
    ULARGE_INTEGER due;
    due.QuadPart = static_cast<ULONGLONG>(releaseDelay);
    FILETIME dueTime{due.LowPart, due.HighPart};
    SetThreadpoolTimer(timer, &dueTime, 0, 0);
}

void showLeaf(HINTERNET request, const CertificateHook& hook)
{
    PCCERT_CONTEXT leaf = nullptr;
    DWORD size = sizeof(leaf);
    // ERROR_WINHTTP_INCORRECT_HANDLE_STATE: no TLS, or not yet (a proxy's CONNECT; another notification
    // follows); ERROR_WINHTTP_INCORRECT_HANDLE_TYPE, ERROR_INSUFFICIENT_BUFFER: not for a request and this
    // size
    if (WinHttpQueryOption(request, WINHTTP_OPTION_SERVER_CERT_CONTEXT, &leaf, &size) == FALSE ||
        leaf == nullptr) {
        return;
    }
    const std::unique_ptr<const CERT_CONTEXT, BOOL(WINAPI*)(PCCERT_CONTEXT)> certificate(
        leaf, &CertFreeCertificateContext);
    hook(*certificate);
}

SharedHook hookOf(HINTERNET request)
{
    const std::lock_guard lock(hooksMutex);
    const auto found = hooks.find(request);
    return found == hooks.end() ? nullptr : found->second;
}

void setHook(HINTERNET request, const SharedHook& hook)
{
    const std::lock_guard lock(hooksMutex);
    if (hook) {
        hooks[request] = hook;
    } else {
        hooks.erase(request);
    }
}

/// Stands before the REST SDK's own callback on each request handle. noexcept: no exception may pass through
/// WinHTTP, and a certificate that could not be kept must not go on as one that was.
void CALLBACK requestStatus(HINTERNET request, DWORD_PTR context, DWORD status, LPVOID information,
                            DWORD length) noexcept
{
    if (status == WINHTTP_CALLBACK_STATUS_SENDING_REQUEST) {
        if (const auto hook = hookOf(request)) {
            showLeaf(request, *hook);
        }
    }
    sdkCallback.load()(request, context, status, information, length);
    if (status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING) {
        releaseModuleSoon();
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

void watch(HINTERNET request, const SharedHook& hook)
{
    // What the REST SDK asked for at the session; it still needs all of it.
    constexpr DWORD flags = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                            WINHTTP_CALLBACK_FLAG_SECURE_FAILURE | WINHTTP_CALLBACK_FLAG_SEND_REQUEST |
                            WINHTTP_CALLBACK_FLAG_REDIRECT;
    setHook(request, hook);
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
    config.set_nativehandle_options([hook = std::move(hook)](web::http::client::native_handle request) {
        watch(static_cast<HINTERNET>(request), hook);
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
