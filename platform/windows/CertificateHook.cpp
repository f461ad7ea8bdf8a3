#include "CertificateHook.h"

#include "ModuleRelease.h"

#include <winhttp.h>

#include <map>
#include <memory>
#include <mutex>
#include <system_error>

using Platform::CertificateHook;

namespace
{
struct Watched
{
    std::shared_ptr<CertificateHook> hook; // empty: no interest in the certificate
    WINHTTP_STATUS_CALLBACK next = nullptr;
    HINSTANCE module = nullptr;
};

std::mutex watchedMutex;
std::map<HINTERNET, Watched> watchedRequests;

/// How long WinHTTP's thread has for the way out of our code after its last callback. There is no notice of
/// that moment to wait for; a thread needs microseconds.
constexpr LONGLONG releaseDelay = -250LL * 10'000; // 250 ms, relative, in units of 100 ns

void CALLBACK releaseModule(PTP_CALLBACK_INSTANCE instance, PVOID module, PTP_TIMER timer)
{
    FreeLibraryWhenCallbackReturns(instance, static_cast<HINSTANCE>(module));
    CloseThreadpoolTimer(timer);
}

void releaseModuleSoon(HINSTANCE module)
{
    auto* timer = CreateThreadpoolTimer(&releaseModule, module, nullptr);
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

Watched findWatched(HINTERNET request, bool forget)
{
    const std::lock_guard lock(watchedMutex);
    const auto found = watchedRequests.find(request);
    if (found == watchedRequests.end()) {
        return {};
    }
    auto watched = found->second;
    if (forget) {
        watchedRequests.erase(found);
    }
    return watched;
}

/// Stands before the REST SDK's own callback on each request handle. noexcept: no exception may pass through
/// WinHTTP, and a certificate that could not be kept must not go on as one that was.
void CALLBACK requestStatus(HINTERNET request, DWORD_PTR context, DWORD status, LPVOID information,
                            DWORD length) noexcept
{
    const bool closing = status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING;
    const auto watched = findWatched(request, closing);
    if (status == WINHTTP_CALLBACK_STATUS_SENDING_REQUEST && watched.hook) {
        showLeaf(request, *watched.hook);
    }
    if (watched.next != nullptr) {
        watched.next(request, context, status, information, length);
    }
    if (closing && watched.module != nullptr) {
        releaseModuleSoon(watched.module);
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

void watch(HINTERNET request, const std::shared_ptr<CertificateHook>& hook)
{
    // What the REST SDK asked for at the session; it still needs all of it.
    constexpr DWORD flags = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                            WINHTTP_CALLBACK_FLAG_SECURE_FAILURE | WINHTTP_CALLBACK_FLAG_SEND_REQUEST |
                            WINHTTP_CALLBACK_FLAG_REDIRECT;
    const std::lock_guard lock(watchedMutex);
    auto& watched = watchedRequests[request];
    watched.hook = hook;
    watched.next = WinHttpSetStatusCallback(request, &requestStatus, flags, 0);
    if (watched.next == WINHTTP_INVALID_STATUS_CALLBACK) {
        // ERROR_WINHTTP_INCORRECT_HANDLE_TYPE, ERROR_WINHTTP_INTERNAL_ERROR, ERROR_NOT_ENOUGH_MEMORY
        const auto error = static_cast<int>(GetLastError());
        watchedRequests.erase(request);
        throw std::system_error(error, std::system_category(), "WinHttpSetStatusCallback");
    }
    watched.module = Platform::holdModule();
    silenceConnection(request);
}

void watchRequests(web::http::client::http_client_config& config, std::shared_ptr<CertificateHook> hook)
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
