#include "PlatformSupport.h"

#include "support/Text.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

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
