#include "Measurement.h"

#include <windows.h>

#include <psapi.h>

namespace
{
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
    return {seconds(kernel) + seconds(user), std::nullopt, memory.WorkingSetSize, memory.PeakWorkingSetSize};
}
