#include "Listener.h"

#include "Connection.h"

#include <boost/asio/ssl/context.hpp>
#include <openssl/ssl.h>

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
auto connectionOver(Stream stream, Service& service, CertificateAuthority* authority = nullptr)
{
    return std::make_shared<Connection<Stream>>(std::move(stream), service, authority);
}

void speakOnly(int tlsVersion, SSL& tls)
{
    SSL_clear_options(&tls, SSL_OP_NO_TLSv1_1);
    SSL_set_security_level(&tls, 0); // versions before 1.2 sign in ways that every other level forbids
    SSL_set_min_proto_version(&tls, tlsVersion);
    SSL_set_max_proto_version(&tls, tlsVersion);
}

void serve(tcp::socket socket, Service& service, CertificateAuthority* authority)
{
    boost::system::error_code alreadyGone;
    socket.set_option(tcp::no_delay(true), alreadyGone);
    const auto plan = service.accepted(authority != nullptr).value_or(PlannedConnection());
    if (plan.misbehaviour) {
        connectionOver(std::move(socket), service)->misbehave(*plan.misbehaviour);
    } else if (authority == nullptr) {
        connectionOver(std::move(socket), service)->start(plan.released);
    } else {
        auto& tls = *authority->certificate(plan.certificate).tls;
        boost::asio::ssl::stream<tcp::socket> stream(std::move(socket), tls);
        if (plan.tlsVersion) {
            speakOnly(*plan.tlsVersion, *stream.native_handle());
        }
        connectionOver(std::move(stream), service, authority)->start(plan.released);
    }
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
    m_acceptor.async_accept([this, &service, authority](boost::system::error_code error, tcp::socket socket) {
        if (!error) {
            serve(std::move(socket), service, authority);
            start(service, authority);
            return;
        }
        // What fails here (no descriptor left, as a rule) fails again at once; waiting gives connections time
        // to end.
        m_timer.expires_after(acceptPause);
        m_timer.async_wait(
            [this, &service, authority](boost::system::error_code) { start(service, authority); });
    });
}
} // namespace sandbox
