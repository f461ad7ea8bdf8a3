#pragma once

#include "Service.h"
#include "TlsContexts.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

namespace sandbox
{

// A port on the loopback interface, chosen by the system. It is open from construction on; connections are
// served from start() on.
class Listener
{
public:
    explicit Listener(boost::asio::io_context& context);

    unsigned short port() const;
    void start(Service& service, TlsContexts* tls = nullptr);

private:
    void accept();
    void serve(boost::asio::ip::tcp::socket socket);
    void acceptLater();

    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_timer;
    Service* m_service = nullptr;
    TlsContexts* m_tls = nullptr;
};

} // namespace sandbox
