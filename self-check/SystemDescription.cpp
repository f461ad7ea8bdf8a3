#include "SystemDescription.h"

#include <windows.h>

#include <filesystem>

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
