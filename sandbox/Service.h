/// @file
/// What the ports serve, and what they share. They are served by one thread, so it needs no lock.
#pragma once

#include "Certificates.h"
#include "Http.h"
#include "Plans.h"

#include <boost/beast/http/verb.hpp>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sandbox
{
struct ReceivedRequest
{
    bool secure;
    std::string head;     ///< its bytes; all bytes of what is no HTTP request
    Request request = {}; ///< empty for what is no HTTP request
};

/// What the REST ports do and the control interface steers and shows.
struct SharedState
{
    /// The records as they are shown, identifiers in the order of time.
    Json helpDesk = {{"sessions", Json::array()},
                     {"tickets", Json::array()},
                     {"techNotes", Json::array()},
                     {"attachments", Json::array()}};
    std::map<std::string, std::string> attachments; ///< the files' bytes, by their identifiers
    std::vector<ReceivedRequest> requests;
    Plans<PlannedAnswer> plannedAnswers;
    /// Whether what is planned as held from now on may go on.
    std::shared_ptr<bool> released = std::make_shared<bool>(false);
    Plans<PlannedConnection> plannedConnections;
};

struct Route
{
    boost::beast::http::verb method;
    std::string path; ///< with a closing '*': every path that begins so
    std::function<Answer(const Request&)> handle;
    std::string errorMember = "error";
};

/// What a port serves: its routes, and before them what is planned.
class Service
{
public:
    /// @param state records requests and holds plans; null: the port has neither
    explicit Service(std::vector<Route> routes, SharedState* state = nullptr);

    /// The fate that is planned for the connection that has just come, if any.
    std::optional<PlannedConnection> accepted(bool secure);
    /// 404 for a path without a route, 405 for a method that its routes do not have.
    Reply serve(ReceivedRequest received);
    /// What `serve` does too; alone for bytes that are no HTTP request.
    void record(ReceivedRequest received);

private:
    std::vector<Route> m_routes;
    SharedState* m_state;
};

/// Path of the REST resources.
constexpr const char* restBase = "/helpdesk/rest";

/// The help desk of one user.
std::vector<Route> restRoutes(SharedState& state, const std::string& user, const std::string& password);

/// The control interface: lets a test look at what arrived, order answers and faults, and start afresh;
/// serves the certificates.
std::vector<Route> controlRoutes(SharedState& state, CertificateAuthority& authority);
} // namespace sandbox
