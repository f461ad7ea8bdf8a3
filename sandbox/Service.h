#pragma once

#include "Http.h"
#include "Plans.h"

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

struct ReceivedRequest
{
    bool secure;
    std::string head;     ///< its bytes; all bytes of what is no HTTP request
    Request request = {}; ///< empty for what is no HTTP request
};

/// What a port serves: by itself just its routes. All ports share one thread, so services need no locks.
class Service
{
public:
    explicit Service(std::vector<Route> routes = {}) : m_routes(std::move(routes)) {}
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    Service(Service&&) = delete;
    Service& operator=(Service&&) = delete;
    virtual ~Service() = default;

    /// The fate that is planned for the connection that has just come, if any.
    virtual std::optional<PlannedConnection> accepted(bool secure);
    /// Comes before the reply; for bytes that are no HTTP request nothing else comes.
    virtual void received(const std::shared_ptr<const ReceivedRequest>& request);
    /// 404 for a path without a route, 405 for a method that its routes do not have.
    virtual Reply reply(const Request& request);

protected:
    std::vector<Route> m_routes;
};
} // namespace sandbox
