#include "RequestConnection.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>

#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <mutex>

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

    /// Lives as long as the REST SDK works on the request.
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
} // namespace

std::shared_ptr<Platform::RequestConnection>
Platform::watchConnection(web::http::client::http_client_config& config, bool secure)
{
    auto connection = std::make_shared<SocketConnection>();
    const bool overTls =
        secure && !config.proxy().is_specified(); // how the REST SDK decides what it hands out
    config.set_nativehandle_options([connection, overTls](web::http::client::native_handle handle) {
        connection->use(overTls ? &static_cast<boost::asio::ssl::stream<tcp::socket&>*>(handle)->next_layer()
                                : static_cast<tcp::socket*>(handle));
    });
    return connection;
}
