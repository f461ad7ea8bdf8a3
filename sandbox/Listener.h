#pragma once

#include "Certificates.h"
#include "Service.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <string>

namespace sandbox
{
/// A port on the loopback interface, chosen by the system. It is open from construction on; connections are
/// served from start() on.
class Listener
{
public:
    explicit Listener(boost::asio::io_context& context);

    /// "SCHEME://localhost:PORT"
    std::string address(const std::string& scheme) const;

    /// @param authority issues the server's certificates; null: no TLS
    void start(Service& service, CertificateAuthority* authority = nullptr);

private:
    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_timer;
};
} // namespace sandbox
