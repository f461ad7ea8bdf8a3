#include "PlatformSupport.h"

#include "support/Text.h"

#include <openssl/bio.h>
#include <openssl/conf.h>
#include <openssl/crypto.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
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

void setStackOfThreads(std::size_t bytes)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, bytes);
    errno = pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
    require(errno == 0);
}

struct Memory
{
    std::size_t addressSpace = 0;
    std::size_t inUse = 0;
};

/// Of this process, in bytes.
Memory memory()
{
    std::ifstream statm("/proc/self/statm");
    Memory pages;
    statm >> pages.addressSpace >> pages.inUse;
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return {pages.addressSpace * pageSize, pages.inUse * pageSize};
}

std::size_t countEntries(const char* folder)
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}
} // namespace

// OpenSSL reads the variable for every new context.
void trustAuthority(const std::string& pemFile, const std::string& /*der*/)
{
    setenv("SSL_CERT_FILE", pemFile.c_str(), 1);
}

std::size_t residentMemory()
{
    return memory().inUse;
}

std::size_t peakMemory()
{
    rusage usage{};
    require(getrusage(RUSAGE_SELF, &usage) == 0);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

void allowOldTls()
{
    static const std::string settings = "openssl_conf = all\n"
                                        "[all]\nssl_conf = tls\n[tls]\nsystem_default = everything\n"
                                        "[everything]\nMinProtocol = TLSv1\n"
                                        "CipherString = DEFAULT:@SECLEVEL=0\n";
    OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CONFIG, nullptr); // the machine's own, which the new ones replace
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(
        BIO_new_mem_buf(settings.data(), static_cast<int>(settings.size())), &BIO_free);
    const std::unique_ptr<CONF, decltype(&NCONF_free)> configuration(NCONF_new(nullptr), &NCONF_free);
    if (NCONF_load_bio(configuration.get(), text.get(), nullptr) != 1 ||
        CONF_modules_load(configuration.get(), nullptr, 0) != 1) {
        throw std::runtime_error("OpenSSL does not take the settings");
    }
}

std::size_t countThreads()
{
    return countEntries("/proc/self/task");
}

std::size_t countHandles()
{
    return countEntries("/proc/self/fd");
}

std::string inThreadCodePage(const std::wstring& text)
{
    return narrow(text);
}

const std::map<std::string, Shortage>& shortages()
{
    static const std::map<std::string, Shortage> all{
        {"noDescriptors",
         {[] { limit(RLIMIT_NOFILE, standardStreams); }, [] { limit(RLIMIT_NOFILE, RLIM_INFINITY); }}},
        {"noMemory",
         {[] { limit(RLIMIT_AS, memory().addressSpace + headroom); },
          [] { limit(RLIMIT_AS, RLIM_INFINITY); }}},
        {"noThread", {[] { setStackOfThreads(impossibleStack); }, [] { setStackOfThreads(usualStack); }}}};
    return all;
}
