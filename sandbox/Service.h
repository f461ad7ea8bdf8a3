#pragma once

#include "Http.h"
#include "Plans.h"
#include "RequestLog.h"

#include <optional>

namespace sandbox
{
/// What a port serves. All ports share one thread, so services need no locks.
class Service
{
public:
    Service() = default;
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    Service(Service&&) = delete;
    Service& operator=(Service&&) = delete;
    virtual ~Service() = default;

    /// The fate that is planned for the connection that has just come, if any.
    virtual std::optional<PlannedConnection> accepted(bool secure) = 0;
    /// Comes before the reply; for bytes that are no HTTP request nothing else comes.
    virtual void received(ReceivedRequest request) = 0;
    virtual Reply reply(const Request& request) = 0;
};

inline Reply replyWith(const Answer& answer, const Request& request)
{
    const bool keepAlive = keepsAlive(request);
    const bool withBody = request.method() != boost::beast::http::verb::head;
    return {{{serialize(answer, keepAlive, withBody)}},
            keepAlive ? Afterwards::KeepAlive : Afterwards::Close};
}
} // namespace sandbox
