#include "Listener.h"

#include "Connection.h"

#include <fcntl.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <system_error>

namespace sandbox
{

namespace
{

using boost::asio::ip::tcp;
using SecureStream = boost::asio::ssl::stream<tcp::socket>;

constexpr std::chrono::milliseconds acceptPause{50};

} // namespace

Listener::Listener(boost::asio::io_context& context)
    : m_acceptor(context, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)), m_timer(context)
{
    // The command that runs under the sandbox, and what it leaves behind, must not keep the port open.
    if (fcntl(m_acceptor.native_handle(), F_SETFD, FD_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot keep a port to this process");
    }
}

unsigned short Listener::port() const
{
    return m_acceptor.local_endpoint().port();
}

void Listener::start(Service& service, TlsContexts* tls)
{
    m_service = &service;
    m_tls = tls;
    accept();
}

void Listener::accept()
{
    m_acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
        if (error) {
            acceptLater();
        } else {
            serve(std::move(socket));
            accept();
        }
    });
}

void Listener::serve(tcp::socket socket)
{
    boost::system::error_code alreadyGone;
    socket.set_option(tcp::no_delay(true), alreadyGone);
    const PlannedConnection plan = m_service->accepted(m_tls != nullptr).value_or(PlannedConnection{});
    if (m_tls != nullptr && !plan.misbehaviour) {
        auto& tls = m_tls->presenting(plan.certificate);
        std::make_shared<Connection<SecureStream>>(SecureStream(std::move(socket), tls), *m_service)->start();
        return;
    }
    const auto connection = std::make_shared<Connection<tcp::socket>>(std::move(socket), *m_service);
    if (plan.misbehaviour) {
        connection->misbehave(*plan.misbehaviour);
    } else {
        connection->start();
    }
}

// What fails here (no descriptor left, as a rule) fails again at once; waiting gives connections time to end.
void Listener::acceptLater()
{
    m_timer.expires_after(acceptPause);
    m_timer.async_wait([this](boost::system::error_code error) {
        if (!error) {
            accept();
        }
    });
}

} // namespace sandbox
