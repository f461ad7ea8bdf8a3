#include "Measurement.h"

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace
{
double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}
} // namespace

Bench::Usage Bench::usage()
{
    rusage counted{};
    getrusage(RUSAGE_SELF, &counted);
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return {seconds(counted.ru_utime) + seconds(counted.ru_stime), counted.ru_nvcsw + counted.ru_nivcsw,
            resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)),
            static_cast<std::size_t>(counted.ru_maxrss) * 1024};
}
