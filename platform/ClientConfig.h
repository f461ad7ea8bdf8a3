/// @file
/// Configurations of the REST SDK's HTTP client.
#pragma once

#include "VantryHostTypes.h"

#include <cpprest/http_client.h>

#include <functional>

namespace Platform
{
using CertificateHook = std::function<void(const CERT_CONTEXT&)>;

/// A default configuration whose clients keep the module loaded while a callback of theirs may still run.
web::http::client::http_client_config makeClientConfig();

/// Has clients of `config` call `hook` with the server's own certificate during each TLS handshake, on a
/// thread of the HTTP stack. The certificate belongs to the caller of the hook. The hook should not throw: an
/// exception does not get past the HTTP stack.
void setCertificateHook(web::http::client::http_client_config& config, CertificateHook hook);
} // namespace Platform
