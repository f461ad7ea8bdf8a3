#include "CertificateQuestion.h"
#include "CertificateInfo.h"

#include <iostream>

namespace
{
bool askPerson()
{
    std::cout << "Trust this server? [y/n] " << std::flush;
    std::string answer;
    while (std::getline(std::cin, answer)) {
        if (answer == "y" || answer == "yes") {
            return true;
        }
        if (answer == "n" || answer == "no") {
            return false;
        }
        std::cout << "Please answer y or n: " << std::flush;
    }
    std::cout << "no answer" << std::endl;
    return false;
}
} // namespace

bool CertificateQuestion::isTrusted(const CERT_CONTEXT& certificate)
{
    const CertificateInfo info = readCertificate(certificate);
    if (info.fingerprint == m_trustedFingerprint) {
        return true;
    }
    std::cout << "The server's certificate:\n"
              << "  subject  " << info.subject << "\n  issuer   " << info.issuer << "\n  SHA-256  "
              << info.fingerprint << "\n  valid    " << info.validFrom << " to " << info.validUntil
              << std::endl;
    const bool isTrusted =
        m_answer == CertificateAnswer::ask ? askPerson() : m_answer == CertificateAnswer::accept;
    std::cout << (isTrusted ? "Certificate accepted." : "Certificate refused.") << std::endl;
    if (isTrusted) {
        m_trustedFingerprint = info.fingerprint;
    }
    return isTrusted;
}
