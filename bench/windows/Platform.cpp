// Bare WinHTTP, on the calling thread, and what Windows counts.
#include "Client.h"
#include "Measurement.h"

#include <windows.h>

#include <psapi.h>
#include <winhttp.h>

#include <system_error>

namespace
{
struct CloseInternet
{
    using pointer = HINTERNET;
    void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using Handle = std::unique_ptr<HINTERNET, CloseInternet>;

void require(bool succeeded, const char* call)
{
    if (!succeeded) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), call);
    }
}

Handle opened(HINTERNET handle, const char* call)
{
    require(handle != nullptr, call);
    return Handle(handle);
}

std::wstring wide(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

void setOption(const Handle& handle, DWORD option, DWORD value)
{
    require(WinHttpSetOption(handle.get(), option, &value, sizeof(value)) != FALSE, "WinHttpSetOption");
}

std::string bodyOf(const Handle& request)
{
    std::string body;
    for (DWORD available = 1; available > 0;) {
        require(WinHttpQueryDataAvailable(request.get(), &available) != FALSE, "WinHttpQueryDataAvailable");
        const auto at = body.size();
        body.resize(at + available);
        DWORD read = 0;
        require(WinHttpReadData(request.get(), body.data() + at, available, &read) != FALSE,
                "WinHttpReadData");
        body.resize(at + read);
    }
    return body;
}

Bench::Response overWinHttp(const web::uri& server, const Bench::Request& request, bool validate)
{
    const auto session = opened(WinHttpOpen(nullptr, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                                            WINHTTP_NO_PROXY_BYPASS, 0),
                                "WinHttpOpen");
    const auto connection = opened(
        WinHttpConnect(session.get(), server.host().c_str(), static_cast<INTERNET_PORT>(server.port()), 0),
        "WinHttpConnect");
    const bool isSecure = Bench::isSecure(server);
    const auto handle = opened(
        WinHttpOpenRequest(connection.get(), wide(request.method).c_str(), wide(request.target).c_str(),
                           nullptr, WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                           WINHTTP_FLAG_ESCAPE_DISABLE | (isSecure ? WINHTTP_FLAG_SECURE : 0)),
        "WinHttpOpenRequest");
    if (isSecure && validate) {
        setOption(handle, WINHTTP_OPTION_ENABLE_FEATURE, WINHTTP_ENABLE_SSL_REVOCATION);
    } else if (isSecure) {
        setOption(handle, WINHTTP_OPTION_SECURITY_FLAGS,
                  SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_CERT_DATE_INVALID |
                      SECURITY_FLAG_IGNORE_CERT_CN_INVALID | SECURITY_FLAG_IGNORE_CERT_WRONG_USAGE);
    }
    for (const auto& [name, value] : request.headers) {
        require(WinHttpAddRequestHeaders(handle.get(), wide(name + ": " + value).c_str(),
                                         static_cast<DWORD>(-1), WINHTTP_ADDREQ_FLAG_ADD) != FALSE,
                "WinHttpAddRequestHeaders");
    }
    const auto length = static_cast<DWORD>(request.body.size());
    require(WinHttpSendRequest(handle.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0,
                               const_cast<char*>(request.body.data()), length, length, 0) != FALSE,
            "WinHttpSendRequest");
    require(WinHttpReceiveResponse(handle.get(), nullptr) != FALSE, "WinHttpReceiveResponse");
    DWORD status = 0;
    DWORD size = sizeof(status);
    require(WinHttpQueryHeaders(handle.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                                WINHTTP_HEADER_NAME_BY_INDEX, &status, &size,
                                WINHTTP_NO_HEADER_INDEX) != FALSE,
            "WinHttpQueryHeaders");
    return {status, bodyOf(handle)};
}

double seconds(const FILETIME& time)
{
    return static_cast<double>((static_cast<ULONGLONG>(time.dwHighDateTime) << 32) + time.dwLowDateTime) /
           1e7;
}
} // namespace

Bench::Usage Bench::usage()
{
    FILETIME creation{};
    FILETIME exit{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user);
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
    return {seconds(kernel) + seconds(user), memory.WorkingSetSize, memory.PeakWorkingSetSize};
}

std::vector<Bench::NamedClient> Bench::peers()
{
    return {{"WinHTTP", plainClient(&overWinHttp)}};
}
