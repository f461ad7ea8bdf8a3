#pragma once

#include "Certificates.h"
#include "Service.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <list>
#include <string>

namespace sandbox
{
/// A port on the loopback interface, by IPv4 and, where there is one, by IPv6: a client may try either first.
/// The system chooses it. It is open from construction on; connections are served from start() on.
class Listener
{
public:
    explicit Listener(boost::asio::io_context& context);

    /// "SCHEME://localhost:PORT"
    std::string address(const std::string& scheme) const;

    /// @param authority issues the server's certificates; null: no TLS
    void start(Service& service, CertificateAuthority* authority = nullptr);

private:
    /// An address's side of the port.
    struct Side
    {
        boost::asio::ip::tcp::acceptor acceptor;
        boost::asio::steady_timer timer;
    };

    void accept(Side& side);
    void serve(boost::asio::ip::tcp::socket socket);

    std::list<Side> m_sides;
    Service* m_service = nullptr;
    CertificateAuthority* m_authority = nullptr;
};
} // namespace sandbox
