// Descriptors, threads and memory that run out.
#include "faults/Scripts.h"

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace
{
void limit(__rlimit_resource resource, rlim_t value)
{
    rlimit limits{};
    if (getrlimit(resource, &limits) != 0) {
        throw std::runtime_error("getrlimit failed");
    }
    limits.rlim_cur = std::min(value, limits.rlim_max);
    if (setrlimit(resource, &limits) != 0) {
        throw std::runtime_error("setrlimit failed");
    }
}

/// The first descriptor that is free: with it as the limit none can be opened.
rlim_t firstFreeDescriptor()
{
    const int descriptor = dup(0);
    if (descriptor < 0) {
        throw std::runtime_error("dup failed");
    }
    close(descriptor);
    return static_cast<rlim_t>(descriptor);
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
    const int error = pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
    if (error != 0) {
        throw std::runtime_error("pthread_setattr_default_np failed");
    }
}
} // namespace

Section platformFaults()
{
    constexpr rlim_t headroom = 64UL * 1024 * 1024;
    constexpr std::size_t usualStack = 8UL * 1024 * 1024;
    constexpr std::size_t impossibleStack = 1UL << 47;
    return {
        "Resources (on Linux)",
        {
            Fault("NoDescriptors", "no descriptor is left")
                .by([](const auto&) { limit(RLIMIT_NOFILE, firstFreeDescriptor()); })
                .undoneBy([] { limit(RLIMIT_NOFILE, RLIM_INFINITY); })
                .gives(600).onLinuxAlone(),
            Fault("NoThread", "the operation's thread cannot be started: `std::system_error`, no message")
                .by([](const auto&) { setStackOfThreads(impossibleStack); })
                .undoneBy([] { setStackOfThreads(usualStack); })
                .at(Stage::Preparation).lets(Leaves::ThreadError).onLinuxAlone().unlessSanitized(),
            Fault("NoMemory", "an answer of 200 MiB does not fit into memory")
                .by([](const auto&) { limit(RLIMIT_AS, addressSpace() + headroom); })
                .undoneBy([] { limit(RLIMIT_AS, RLIM_INFINITY); })
                .answers({{{jsonHead(200UL * 1024 * 1024)}, {std::string(65'536, ' '), 0, endlessly}}})
                .gives(600, L"Error while sending a request to the Vantry server.").cost().onLinuxAlone()
                .unlessSanitized(),
        }};
}
