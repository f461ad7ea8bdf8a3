#pragma once

#include <string>

namespace sandbox
{

// A certificate authority of this one run, its revocation list, and the server's certificate from it.
struct Certificates
{
    std::string caPem;
    std::string caDer;
    std::string crlDer;
    std::string leafPem;
    std::string leafDer;
    std::string leafKeyPem;
};

Certificates createCertificates(const std::string& crlUrl);

} // namespace sandbox
