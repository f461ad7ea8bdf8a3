#include "PlatformSupport.h"

#include "support/Text.h"

#include <openssl/bio.h>
#include <openssl/conf.h>
#include <openssl/crypto.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{
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

bool authorityStaysTrusted()
{
    return false;
}

std::size_t residentMemory()
{
    std::ifstream statm("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    statm >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t peakMemory()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    std::size_t kibibytes = 0;
    while (status >> word && word != "VmHWM:") {
    }
    if (!(status >> kibibytes)) {
        throw std::runtime_error("no VmHWM in /proc/self/status");
    }
    return kibibytes * 1024;
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
