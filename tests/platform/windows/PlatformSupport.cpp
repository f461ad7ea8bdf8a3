#include "PlatformSupport.h"

#include "self-check/UserRoots.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include <array>
#include <cstdlib>
#include <cwchar>
#include <stdexcept>

namespace
{
PROCESS_MEMORY_COUNTERS memoryCounters()
{
    PROCESS_MEMORY_COUNTERS counters{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0) {
        throw std::runtime_error("GetProcessMemoryInfo failed with " + std::to_string(GetLastError()));
    }
    return counters;
}

/// Wine leaves the list of revoked certificates open, some hundred times at most, whenever it has checked
/// one.
bool isRevocationList(HANDLE handle)
{
    std::array<wchar_t, 512> path{};
    return GetFileType(handle) == FILE_TYPE_DISK &&
           GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), 0) != 0 &&
           std::wcsstr(path.data(), L"CryptnetUrlCache") != nullptr;
}
} // namespace

void trustAuthority(const std::string& /*pemFile*/, const std::string& der)
{
    // Windows asks the person at every change of these certificates: the self-check makes one for all its
    // tests.
    if (std::getenv("VANTRY_SELF_CHECK") == nullptr) {
        trustByUser(der);
    }
}

// Schannel speaks what a program asks for.
void allowOldTls() {}

std::size_t residentMemory()
{
    return memoryCounters().WorkingSetSize;
}

std::size_t peakMemory()
{
    return memoryCounters().PeakWorkingSetSize;
}

std::size_t countThreads()
{
    const auto snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    std::size_t threads = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (auto more = Thread32First(snapshot, &entry); more != FALSE; more = Thread32Next(snapshot, &entry)) {
        threads += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return threads;
}

/// Asks for each possible handle: not every system implements the call that counts them.
std::size_t countHandles()
{
    std::size_t handles = 0;
    for (std::uintptr_t value = 4; value < 0x10000; value += 4) {
        auto* const handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        handles += GetHandleInformation(handle, &flags) != FALSE && !isRevocationList(handle) ? 1 : 0;
    }
    return handles;
}

std::string inThreadCodePage(const std::wstring& text)
{
    constexpr std::size_t longest = 4; // bytes of one character in any code page
    std::string bytes(text.size() * longest, '\0');
    const int length = WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), static_cast<int>(text.size()),
                                           bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

const std::map<std::string, Shortage>& shortages()
{
    static const std::map<std::string, Shortage> none;
    return none;
}
