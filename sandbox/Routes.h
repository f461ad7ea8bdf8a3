#pragma once

#include "Certificates.h"
#include "Service.h"

#include <string>
#include <vector>

namespace sandbox
{
/// Path of the REST resources.
constexpr const char* restBase = "/helpdesk/rest";

/// The help desk of one user.
std::vector<Route> restRoutes(SharedState& state, const std::string& user, const std::string& password);

/// The control interface: lets a test look at what arrived, order answers and faults, and start afresh;
/// serves the certificates.
std::vector<Route> controlRoutes(SharedState& state, CertificateAuthority& authority);
} // namespace sandbox
