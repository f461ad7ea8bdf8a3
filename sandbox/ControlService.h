#pragma once

#include "Certificates.h"
#include "RestService.h"
#include "Router.h"
#include "Service.h"

#include <optional>
#include <string>
#include <vector>

namespace sandbox
{

// Lets a test look at what arrived, order answers and start afresh; serves the certificates.
class ControlService final : public Service
{
public:
    ControlService(SharedState& state, const CertificateAuthority& authority, const std::string& leafDer);

    std::optional<PlannedConnection> accepted(bool secure) override;
    void received(ReceivedRequest request) override;
    Reply reply(const Request& request) override;

private:
    SharedState& m_state;
    std::vector<Route> m_routes;
};

} // namespace sandbox
