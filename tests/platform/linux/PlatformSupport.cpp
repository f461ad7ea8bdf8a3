#include "PlatformSupport.h"

#include "support/Text.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>

// OpenSSL reads the variable for every new context.
void trustAuthority(const std::string& pemFile, const std::string& /*der*/)
{
    setenv("SSL_CERT_FILE", pemFile.c_str(), 1);
}

bool authorityStaysTrusted()
{
    return false;
}

void distrustAuthority(const std::string& /*der*/)
{
    setenv("SSL_CERT_FILE", "/dev/null", 1);
}

bool isWindows()
{
    return false;
}

bool isSanitized()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

std::size_t residentMemory()
{
    std::ifstream statm("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    statm >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

bool reportsShortBodies()
{
    return true;
}

std::string inThreadCodePage(const std::wstring& text)
{
    return narrow(text);
}

std::vector<std::wstring> malformedTexts()
{
    return {{L'a', static_cast<wchar_t>(0xD800)}, {L'a', static_cast<wchar_t>(0x110000)}};
}
