#pragma once

#include "CertificateInfo.h"

/// Shows the certificate of a server and tells whether the person trusts it. Closing the dialog in any other
/// way is a refusal.
bool askAboutCertificate(HWND owner, const std::wstring& server, const CertificateInfo& certificate);
