#include "Listener.h"

#include "Connection.h"

#include <boost/asio/ssl/context.hpp>

#include <chrono>
#include <memory>
#include <utility>

namespace sandbox
{
namespace
{
using boost::asio::ip::tcp;

constexpr std::chrono::milliseconds acceptPause{50};

template <typename Stream>
auto connectionOver(Stream stream, Service& service)
{
    return std::make_shared<Connection<Stream>>(std::move(stream), service);
}
} // namespace

Listener::Listener(boost::asio::io_context& context)
    : m_acceptor(context, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)), m_timer(context)
{}

std::string Listener::address(const std::string& scheme) const
{
    return scheme + "://localhost:" + std::to_string(m_acceptor.local_endpoint().port());
}

void Listener::start(Service& service, CertificateAuthority* authority)
{
    m_service = &service;
    m_authority = authority;
    accept();
}

void Listener::accept()
{
    m_acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
        if (!error) {
            serve(std::move(socket));
            accept();
            return;
        }
        // What fails here (no descriptor left, as a rule) fails again at once; waiting gives connections time
        // to end.
        m_timer.expires_after(acceptPause);
        m_timer.async_wait([this](boost::system::error_code) { accept(); });
    });
}

void Listener::serve(tcp::socket socket)
{
    boost::system::error_code alreadyGone;
    socket.set_option(tcp::no_delay(true), alreadyGone);
    const auto plan = m_service->accepted(m_authority != nullptr).value_or(PlannedConnection());
    if (plan.misbehaviour) {
        connectionOver(std::move(socket), *m_service)->misbehave(*plan.misbehaviour);
    } else if (m_authority == nullptr) {
        connectionOver(std::move(socket), *m_service)->start();
    } else {
        auto& tls = *m_authority->certificate(plan.certificate).tls;
        connectionOver(boost::asio::ssl::stream<tcp::socket>(std::move(socket), tls), *m_service)->start();
    }
}
} // namespace sandbox
