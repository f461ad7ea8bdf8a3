#include "CertificateHooks.h"

#include <map>
#include <mutex>

namespace
{
/// WinHTTP may give a handle's value to a new request before it reports that the old one is closed. So an
/// entry is not removed when its request closes: it stays until the value is used again.
std::mutex hooksMutex;
std::map<HINTERNET, Platform::SharedHook> hooks;

Platform::SharedHook hookOf(HINTERNET request)
{
    const std::lock_guard lock(hooksMutex);
    const auto found = hooks.find(request);
    return found == hooks.end() ? nullptr : found->second;
}
} // namespace

void Platform::wantCertificate(HINTERNET request, const SharedHook& hook)
{
    const std::lock_guard lock(hooksMutex);
    if (hook) {
        hooks[request] = hook;
    } else {
        hooks.erase(request);
    }
}

bool Platform::showCertificate(HINTERNET request)
{
    const auto hook = hookOf(request);
    if (!hook) {
        return true;
    }
    PCCERT_CONTEXT leaf = nullptr;
    DWORD size = sizeof(leaf);
    if (WinHttpQueryOption(request, WINHTTP_OPTION_SERVER_CERT_CONTEXT, &leaf, &size) == FALSE) {
        // No TLS yet: a proxy's CONNECT; another notification follows. Any other error, as
        // ERROR_NOT_ENOUGH_MEMORY, leaves the server unknown.
        return GetLastError() == ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
    }
    const std::unique_ptr<const CERT_CONTEXT, BOOL(WINAPI*)(PCCERT_CONTEXT)> certificate(
        leaf, &CertFreeCertificateContext);
    return leaf != nullptr && (*hook)(*certificate);
}
