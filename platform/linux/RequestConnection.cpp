#include "RequestConnection.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

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

    /// Null: none is known. Each has to live until the next one is named, or the request has ended.
    void use(tcp::socket* socket)
    {
        const std::lock_guard lock(m_mutex);
        m_socket = socket;
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
        return info.back() - static_cast<std::uint64_t>(unread);
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
    std::array<char, INET_ADDRSTRLEN> text{};
    if (found->ai_next != nullptr || getnameinfo(found->ai_addr, found->ai_addrlen, text.data(), text.size(),
                                                 nullptr, 0, NI_NUMERICHOST) != 0) {
        return std::nullopt;
    }
    return text.data();
}

/// Where an address refuses, the REST SDK replaces the socket by that for the name's next one, unannounced: a
/// plain connection is seen if there is one address alone.
bool leaveOneAddress(web::uri& base, web::http::http_request& request)
{
    const auto address = onlyAddressOf(base.host());
    if (!address) {
        return false;
    }
    if (*address != base.host()) {
        request.headers()["Host"] =
            base.is_port_default() ? base.host() : base.host() + ":" + std::to_string(base.port());
        base = web::uri_builder(base).set_host(*address).to_uri();
    }
    return true;
}

/// Over TLS, the context of the next connection is made before the one before it goes.
void forgetReplaced(web::http::client::http_client_config& config,
                    const std::shared_ptr<SocketConnection>& connection)
{
    config.set_ssl_context_callback([connection, prepare = config.get_ssl_context_callback()](auto& context) {
        connection->use(nullptr);
        prepare(context);
    });
}
} // namespace

std::shared_ptr<Platform::RequestConnection>
Platform::watchConnection(web::http::client::http_client_config& config, web::uri& base,
                          web::http::http_request& request)
{
    auto connection = std::make_shared<SocketConnection>();
    if (config.proxy().is_specified()) {
        return connection; // unseen: its address is not the server's
    }
    if (base.scheme() == "https") {
        forgetReplaced(config, connection);
        config.set_nativehandle_options([connection](web::http::client::native_handle handle) {
            using TlsStream = boost::asio::ssl::stream<tcp::socket&>;
            connection->use(&static_cast<TlsStream*>(handle)->next_layer());
        });
    } else if (leaveOneAddress(base, request)) {
        config.set_nativehandle_options([connection](web::http::client::native_handle handle) {
            connection->use(static_cast<tcp::socket*>(handle));
        });
    }
    return connection;
}
