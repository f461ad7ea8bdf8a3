#include "SystemDescription.h"

#include <windows.h>

#include <stdexcept>
#include <vector>

namespace
{
/// As it is: RtlGetVersion, and what the system says of itself to programs, differ by compatibility settings.
std::string registryText(const wchar_t* value)
{
    std::wstring text(256, L'\0');
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)", value,
                     RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS) {
        return "";
    }
    return std::filesystem::path(text.c_str()).u8string();
}

std::string wineVersion()
{
    using Function = const char*(CDECL*)();
    const auto address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
    const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    return function == nullptr ? "" : std::string(", which is Wine ") + function();
}
} // namespace

std::string describeSystem()
{
    return registryText(L"ProductName") + " " + registryText(L"DisplayVersion") + ", build " +
           registryText(L"CurrentBuild") + wineVersion() + "; ANSI code page " + std::to_string(GetACP());
}

std::string fileVersion(const std::filesystem::path& file)
{
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), nullptr);
    std::vector<char> data(size);
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    if (size == 0 || GetFileVersionInfoW(file.c_str(), 0, size, data.data()) == FALSE ||
        VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length) == FALSE) {
        throw std::runtime_error("no version in " + file.u8string());
    }
    return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(info->dwFileVersionLS));
}
