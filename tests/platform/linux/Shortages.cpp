#include "Shortages.h"

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

namespace
{
constexpr rlim_t standardStreams = STDERR_FILENO + 1; ///< the only ones that stay open for sure
constexpr rlim_t headroom = 64UL * 1024 * 1024;
constexpr std::size_t usualStack = 8UL * 1024 * 1024;
constexpr std::size_t impossibleStack = 1UL << 47U;

void require(bool done)
{
    if (!done) {
        throw std::system_error(errno, std::generic_category());
    }
}

void limit(__rlimit_resource resource, rlim_t value)
{
    rlimit limits{};
    require(getrlimit(resource, &limits) == 0);
    limits.rlim_cur = std::min(value, limits.rlim_max);
    require(setrlimit(resource, &limits) == 0);
}

rlim_t addressSpace()
{
    std::ifstream statm("/proc/self/statm");
    rlim_t pages = 0;
    statm >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void setStackOfThreads(std::size_t bytes)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, bytes);
    errno = pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
    require(errno == 0);
}
} // namespace

const std::map<std::string, Shortage>& shortages()
{
    static const std::map<std::string, Shortage> all{
        {"noDescriptors",
         {[] { limit(RLIMIT_NOFILE, standardStreams); }, [] { limit(RLIMIT_NOFILE, RLIM_INFINITY); }}},
        {"noMemory",
         {[] { limit(RLIMIT_AS, addressSpace() + headroom); }, [] { limit(RLIMIT_AS, RLIM_INFINITY); }}},
        {"noThread", {[] { setStackOfThreads(impossibleStack); }, [] { setStackOfThreads(usualStack); }}}};
    return all;
}
