#include "PlatformSupport.h"

#include "support/Text.h"

#include <cstdlib>

// OpenSSL reads the variable for every new context.
void trustAuthority(const std::string& pemFile, const std::string& /*der*/)
{
    setenv("SSL_CERT_FILE", pemFile.c_str(), 1);
}

void distrustAuthority(const std::string& /*der*/)
{
    setenv("SSL_CERT_FILE", "/dev/null", 1);
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
