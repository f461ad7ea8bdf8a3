#pragma once

#include "Certificates.h"
#include "RestService.h"
#include "Service.h"

#include <vector>

namespace sandbox
{
/// The control interface: lets a test look at what arrived, order answers and faults, and start afresh;
/// serves the certificates.
std::vector<Route> controlRoutes(SharedState& state, CertificateAuthority& authority);
} // namespace sandbox
