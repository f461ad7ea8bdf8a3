/// @file
/// One request and its answer, within limits.
#pragma once

#include "ExchangeLimits.h"
#include "ServerAnswer.h"

#include <cpprest/http_client.h>

#include <functional>
#include <memory>

namespace VantryIntegrationApi
{
/// The operation's thread waits with a limit; it does not cancel, since a cancellation that meets the
/// request's own end would have the REST SDK close WinHTTP's handle twice. What the request still refers to
/// when the wait is given up is shared, and the next bytes end the request.
class BoundedExchange
{
public:
    /// Reads an answer on a thread of the REST SDK, perhaps after the wait has been given up: it must not
    /// refer to anything that ends with the operation, nor wait, since at the end of the process nothing
    /// comes.
    using Reader = std::function<ServerAnswer(web::http::http_response&)>;

    /// Whether the reader is called when all of the body has come, or has failed; else it is called at once.
    using BodyWanted = bool (*)(const web::http::http_response&);

    /// Begins to send `request` to `base` through a client of its own.
    BoundedExchange(web::uri base, web::http::client::http_client_config config,
                    web::http::http_request request, const ExchangeLimits& limits, BodyWanted wanted,
                    Reader reader);

    /// Whatever has not come of the answer is not read on.
    ~BoundedExchange();

    BoundedExchange(const BoundedExchange&) = delete;
    BoundedExchange(BoundedExchange&&) = delete;
    BoundedExchange& operator=(const BoundedExchange&) = delete;
    BoundedExchange& operator=(BoundedExchange&&) = delete;

    /// What the reader made of the answer. To be called once.
    /// @throws what the reader or the REST SDK threw; web::http::http_exception whose error code's message
    /// names
    ///         the limit; OwnOutcome if the watcher gave the operation up
    ServerAnswer wait(const TransferWatcher& watcher);

private:
    class State;

    static void readAnswer(const std::shared_ptr<State>& state, BodyWanted wanted, const Reader& reader,
                           const pplx::task<web::http::http_response>& answered);

    std::shared_ptr<State> m_state;
};
} // namespace VantryIntegrationApi
