/// @file
/// One request and its answer, within limits.
#pragma once

#include "ExchangeLimits.h"

#include <cpprest/http_client.h>

#include <memory>

namespace VantryIntegrationApi
{
/// The size of the body, when all of it has come. Unlike `content_ready()` it is done without another thread.
pplx::task<utility::size64_t> bodyOf(const web::http::http_response& response);

/// The operation's thread waits with a limit; it does not cancel, since a cancellation that meets the
/// request's own end would have the REST SDK close WinHTTP's handle twice. What the request still refers to
/// when the wait is given up is shared, and the next bytes end the request.
class BoundedExchange
{
public:
    /// Whether all of this answer's body is waited for.
    using BodyWanted = bool (*)(const web::http::http_response&);

    /// Begins to send `request` to `base` through a client of its own.
    BoundedExchange(web::uri base, web::http::client::http_client_config config,
                    web::http::http_request request, const ExchangeLimits& limits, BodyWanted wanted);

    /// Whatever has not come of the answer is not read on.
    ~BoundedExchange();

    BoundedExchange(const BoundedExchange&) = delete;
    BoundedExchange(BoundedExchange&&) = delete;
    BoundedExchange& operator=(const BoundedExchange&) = delete;
    BoundedExchange& operator=(BoundedExchange&&) = delete;

    /// The answer, to be read on the calling thread: those of the REST SDK must not wait for anything, since
    /// they are joined at the end of the process. Its body has come, or has failed, if it is wanted. To be
    /// called once; what it returns lives as long as this object.
    /// @throws what the REST SDK threw; web::http::http_exception whose error code's message names the limit;
    ///         OwnOutcome if the watcher gave the operation up
    web::http::http_response& wait(const TransferWatcher& watcher);

private:
    class State;
    std::shared_ptr<State> m_state;
};
} // namespace VantryIntegrationApi
