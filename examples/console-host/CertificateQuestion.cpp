#include "CertificateQuestion.h"
#include "CertificateInfo.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace
{
constexpr const char* dateFormat = "%Y-%m-%d %H:%M UTC";

std::string fingerprintText(const CertificateInfo& info)
{
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0');
    const char* separator = "";
    for (const unsigned byte : info.fingerprint) {
        text << separator << std::setw(2) << byte;
        separator = ":";
    }
    return text.str();
}

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
    const std::string fingerprint = fingerprintText(info);
    if (fingerprint == m_trustedFingerprint) {
        return true;
    }
    std::cout << "The server's certificate:\n"
              << "  subject  " << info.subject << "\n  issuer   " << info.issuer << "\n  SHA-256  "
              << fingerprint << "\n  valid    " << std::put_time(&info.validFrom, dateFormat) << " to "
              << std::put_time(&info.validUntil, dateFormat) << std::endl;
    const bool isTrusted =
        m_answer == CertificateAnswer::ask ? askPerson() : m_answer == CertificateAnswer::accept;
    std::cout << (isTrusted ? "Certificate accepted." : "Certificate refused.") << std::endl;
    if (isTrusted) {
        m_trustedFingerprint = fingerprint;
    }
    return isTrusted;
}
