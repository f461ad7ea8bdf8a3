/// @file
/// Configurations of the REST SDK's HTTP client.
#pragma once

#include "VantryHostTypes.h"

#include <cpprest/http_client.h>

#include <functional>

namespace Platform
{
/// Whether the exchange may go on with the server that shows this certificate. The certificate belongs to the
/// caller of the hook. An exception is a no.
using CertificateHook = std::function<bool(const CERT_CONTEXT&)>;

/// A configuration whose clients speak TLS 1.2 or newer and never log on by themselves, and keep the module
/// loaded while a callback of theirs may still run.
web::http::client::http_client_config makeClientConfig();

/// Has clients of `config` ask `hook` about the server's own certificate during the TLS handshake, on a
/// thread of the HTTP stack. Where it says no, the request fails and nothing of it is sent. The system's
/// validation decides besides, if `config` asks for it.
void setCertificateHook(web::http::client::http_client_config& config, CertificateHook hook);
} // namespace Platform
