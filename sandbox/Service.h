#pragma once

#include "State.h"

#include <boost/beast/http/verb.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sandbox
{
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
    /// To be called before `reply`, and alone for bytes that are no HTTP request.
    void received(const std::shared_ptr<const ReceivedRequest>& request);
    /// 404 for a path without a route, 405 for a method that its routes do not have.
    Reply reply(const Request& request);

private:
    std::vector<Route> m_routes;
    SharedState* m_state;
};
} // namespace sandbox
