/// @file
/// Which request's certificate is shown to whom.
#pragma once

#include "ClientConfig.h"

#include <windows.h>

#include <winhttp.h>

#include <memory>

namespace Platform
{
using SharedHook = std::shared_ptr<CertificateHook>;

/// Wants the certificate of `request` shown to `hook`; to nobody if that is null. Replaces what was wanted
/// for the handle before.
void wantCertificate(HINTERNET request, const SharedHook& hook);

/// Shows the certificate of a request whose handshake is done to the hook that wants it, if there is one.
/// False if the hook says that the request may not go on.
bool showCertificate(HINTERNET request);
} // namespace Platform
