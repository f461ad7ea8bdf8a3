#pragma once

#include "TAVIKVANTRYAPI.h"

#include <string>

/// What a person needs to know of a certificate to trust it or not, in UTF-8 and fit for a terminal.
struct CertificateInfo
{
    std::string subject;
    std::string issuer;
    std::string fingerprint; ///< SHA-256 of the whole certificate
    std::string validFrom;
    std::string validUntil;
};

/// @throws std::runtime_error if the certificate cannot be read
CertificateInfo readCertificate(const CERT_CONTEXT& certificate);
