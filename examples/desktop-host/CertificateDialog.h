#pragma once

#include "CertificateInfo.h"

struct CertificateAnswer
{
    bool isTrusted = false;
    bool isRemembered = false;
};

/// Shows the certificate and waits for the answer. Closing the dialog in any other way is a refusal.
CertificateAnswer askAboutCertificate(HWND owner, const CertificateInfo& certificate);
