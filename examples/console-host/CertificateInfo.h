#pragma once

#include "TAVIKVANTRYAPI.h"

#include <array>
#include <ctime>
#include <string>

/// What a person needs to know of a certificate to trust it or not.
struct CertificateInfo
{
    std::string subject; ///< in UTF-8 and fit for a terminal
    std::string issuer;
    std::array<unsigned char, 32> fingerprint; ///< SHA-256 of the whole certificate
    std::tm validFrom;                         ///< in UTC
    std::tm validUntil;
};

/// @throws std::runtime_error if the certificate cannot be read
CertificateInfo readCertificate(const CERT_CONTEXT& certificate);
