/// @file
/// The connection of one request, as far as the system lets it be seen.
#pragma once

#include <cpprest/http_client.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace Platform
{
/// May be used by several threads at once.
class RequestConnection
{
public:
    RequestConnection() = default;
    virtual ~RequestConnection() = default;
    RequestConnection(const RequestConnection&) = delete;
    RequestConnection(RequestConnection&&) = delete;
    RequestConnection& operator=(const RequestConnection&) = delete;
    RequestConnection& operator=(RequestConnection&&) = delete;

    /// To be called on a thread of the REST SDK while it reports progress of the request: the connection is
    /// open then.
    virtual void opened() = 0;

    /// How many bytes the HTTP stack has read from the connection; none where the system does not tell.
    virtual std::optional<std::uint64_t> bytesRead() const = 0;

    /// Ends the connection, whatever the REST SDK still waits for on it. Does nothing where the system offers
    /// no safe way.
    virtual void end() = 0;
};

/// The connection of `request`, which a client of `config` is about to send to `base`. Both may be changed to
/// say the same by other means.
std::shared_ptr<RequestConnection> watchConnection(web::http::client::http_client_config& config,
                                                   web::uri& base, web::http::http_request& request);
} // namespace Platform
