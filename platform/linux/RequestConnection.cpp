#include "RequestConnection.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string>

namespace
{
using boost::asio::ip::tcp;

/// The kernel's tcp_info as far as tcpi_bytes_received, which the C library's own declaration lacks.
using TcpInfo = std::array<std::uint64_t, 17>;

/// Looks at the socket through a descriptor of its own, which stays the same socket when the REST SDK has
/// closed its.
class SocketConnection : public Platform::RequestConnection
{
public:
    SocketConnection() = default;
    ~SocketConnection() override
    {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    SocketConnection(const SocketConnection&) = delete;
    SocketConnection(SocketConnection&&) = delete;
    SocketConnection& operator=(const SocketConnection&) = delete;
    SocketConnection& operator=(SocketConnection&&) = delete;

    /// Has to live until the request has ended.
    void use(tcp::socket& socket)
    {
        const std::lock_guard lock(m_mutex);
        m_socket = &socket;
    }

    void opened() override
    {
        const std::lock_guard lock(m_mutex);
        if (m_socket != nullptr && m_descriptor < 0) {
            // EBADF: closed meanwhile; EMFILE: the connection stays unseen
            m_descriptor = fcntl(m_socket->native_handle(), F_DUPFD_CLOEXEC, 0);
        }
    }

    std::optional<std::uint64_t> bytesRead() const override
    {
        const std::lock_guard lock(m_mutex);
        TcpInfo info{};
        socklen_t size = sizeof(info);
        int unread = 0;
        // No error is possible for a TCP socket that is open.
        if (m_descriptor < 0 || getsockopt(m_descriptor, IPPROTO_TCP, TCP_INFO, info.data(), &size) != 0 ||
            ioctl(m_descriptor, FIONREAD, &unread) != 0) {
            return std::nullopt;
        }
        // What arrives between the two looks is unread, but not yet received.
        const auto received = info.back();
        return received - std::min(received, static_cast<std::uint64_t>(unread));
    }

    void end() override
    {
        const std::lock_guard lock(m_mutex);
        if (m_descriptor >= 0) {
            shutdown(m_descriptor, SHUT_RDWR); // ENOTCONN: it has ended by itself
        }
    }

private:
    mutable std::mutex m_mutex;
    tcp::socket* m_socket = nullptr;
    int m_descriptor = -1;
};

std::string textOf(const addrinfo& address)
{
    std::array<char, INET_ADDRSTRLEN> text{};
    getnameinfo(address.ai_addr, address.ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    return text.data();
}

/// The address of `host`, if it has exactly one by IPv4.
std::optional<std::string> onlyAddressOf(const std::string& host)
{
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0) { // the REST SDK will say so
        return std::nullopt;
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, &freeaddrinfo);
    const auto address = textOf(*found);
    // A hosts file that has the name by IPv6, too, gives the same one twice.
    for (const auto* next = found->ai_next; next != nullptr; next = next->ai_next) {
        if (textOf(*next) != address) {
            return std::nullopt;
        }
    }
    return address;
}

tcp::socket& socketOf(web::http::client::native_handle handle, bool overTls)
{
    using TlsStream = boost::asio::ssl::stream<tcp::socket&>;
    return overTls ? static_cast<TlsStream*>(handle)->next_layer() : *static_cast<tcp::socket*>(handle);
}
} // namespace

// Where an address refuses, the REST SDK replaces the socket that it has handed out by one for the name's
// next address, unannounced. So a connection is seen if there is one address alone, and the REST SDK is given
// that one.
std::shared_ptr<Platform::RequestConnection>
Platform::watchConnection(web::http::client::http_client_config& config, web::uri& base,
                          web::http::http_request& request)
{
    auto connection = std::make_shared<SocketConnection>();
    const auto address = onlyAddressOf(base.host());
    if (!address || config.proxy().is_specified()) { // a proxy's address is not the server's
        return connection;
    }
    const bool overTls = base.scheme() == "https";
    const auto name = base.host();
    const auto host = base.is_port_default() ? name : name + ":" + std::to_string(base.port());
    base = web::uri_builder(base).set_host(*address).to_uri();
    // The name that the certificate has to be for, as the REST SDK takes it when it makes the connection.
    request.headers()["Host"] = name;
    config.set_nativehandle_options(
        [connection, request, host, overTls](web::http::client::native_handle handle) mutable {
            connection->use(socketOf(handle, overTls));
            request.headers()["Host"] = host; // as it is sent
        });
    return connection;
}
