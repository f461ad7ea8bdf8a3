#pragma once

#include <windows.h>

#include "TAVIKVANTRYAPI.h"

#include <string>

/// What a person needs to know of a certificate to trust it or not.
struct CertificateInfo
{
    std::wstring subject;
    std::wstring issuer;
    std::wstring validity;    ///< two lines
    std::wstring fingerprint; ///< SHA-256 of the whole certificate
};

/// @throws std::runtime_error if the certificate cannot be read
CertificateInfo readCertificate(const CERT_CONTEXT& certificate);
