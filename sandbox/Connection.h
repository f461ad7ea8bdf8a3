#pragma once

#include "Certificates.h"
#include "Service.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <openssl/ssl.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace sandbox
{
/// One client's connection: reads requests, hands them to the service and writes its replies. A pending
/// operation keeps the connection alive; it ends when none is left.
template <typename Stream>
class Connection : public std::enable_shared_from_this<Connection<Stream>>
{
public:
    /// @param authority issues the certificates for renegotiations of TLS; null: there are none
    Connection(Stream stream, Service& service, CertificateAuthority* authority)
        : m_stream(std::move(stream)), m_timer(m_stream.get_executor()), m_service(service),
          m_authority(authority), m_received(chunkSize)
    {}

    /// @param released whether it may be read from; null: it may
    void start(std::shared_ptr<const bool> released)
    {
        m_released = std::move(released);
        begin();
    }

    /// Replies to nothing, or to the first bytes of the client, whatever they are.
    void misbehave(Reply reply)
    {
        m_reply = std::move(reply);
        if (m_reply.steps.empty()) {
            finish();
        } else {
            m_stream.async_read_some(boost::asio::buffer(m_received), then(&Connection::goOn));
        }
    }

private:
    using ErrorCode = boost::system::error_code;
    using Socket = boost::asio::ip::tcp::socket;
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    static constexpr bool isSecure = !std::is_same_v<Stream, Socket>;
    static constexpr std::size_t chunkSize = std::size_t{64} * 1024;
    static constexpr std::size_t headerLimit = std::size_t{64} * 1024;
    static constexpr std::size_t bodyLimit = std::size_t{512} * 1024 * 1024;
    static constexpr std::chrono::milliseconds holdTime{2};
    static constexpr std::chrono::milliseconds lingerTime{200};
    static constexpr std::chrono::minutes silentTime{2};

    static bool isHeld(const std::shared_ptr<const bool>& released) { return released && !*released; }

    /// The handler of an operation that is followed by another one, or by the connection's end if it fails.
    auto then(void (Connection::*next)())
    {
        return [self = this->shared_from_this(), next](ErrorCode error, std::size_t /*length*/ = 0) {
            if (error) {
                self->drop();
            } else if (self->socket().is_open()) {
                ((*self).*next)();
            }
        };
    }

    void wait(std::chrono::milliseconds time, void (Connection::*next)())
    {
        m_timer.expires_after(time);
        m_timer.async_wait(then(next));
    }

    void begin()
    {
        if (isHeld(m_released)) {
            wait(holdTime, &Connection::begin);
        } else if constexpr (isSecure) {
            m_stream.async_handshake(boost::asio::ssl::stream_base::server, then(&Connection::startRequest));
        } else {
            startRequest();
        }
    }

    void startRequest()
    {
        m_parser.emplace();
        m_parser->header_limit(headerLimit);
        m_parser->body_limit(bodyLimit);
        m_head.clear();
        parse();
    }

    /// At most one read is under way: one that has watched the client during a reply goes on into the next
    /// request.
    void read()
    {
        if (std::exchange(m_isReading, true)) {
            return;
        }
        m_stream.async_read_some(boost::asio::buffer(m_received),
                                 [self = this->shared_from_this()](ErrorCode error, std::size_t length) {
                                     self->m_isReading = false;
                                     if (error) {
                                         self->drop();
                                     } else {
                                         self->take(length);
                                     }
                                 });
    }

    void take(std::size_t length)
    {
        if (m_parser || m_reply.afterwards == Afterwards::KeepAlive) {
            m_unparsed.append(m_received.data(), length);
        } else {
            m_ignored += length;
        }
        if (m_parser) {
            parse();
        } else if (m_reply.afterwards == Afterwards::Stay && m_ignored >= chunkSize &&
                   m_ignored < chunkSize + length) {
            // A client that sends much is left waiting; but not for ever, since its goodbye stands behind
            // all that it has sent.
            wait(silentTime, &Connection::read);
        } else {
            read();
        }
    }

    /// Has the parser stop behind the head, so that the head's bytes can be kept as they arrived, and go on
    /// with the body.
    void parse()
    {
        const bool isHeadDone = m_parser->is_header_done();
        m_parser->eager(isHeadDone);
        ErrorCode error;
        const std::size_t used = m_parser->put(boost::asio::buffer(m_unparsed), error);
        if (!isHeadDone) {
            m_head.append(m_unparsed, 0, used);
        }
        m_unparsed.erase(0, used);
        if (error && error != boost::beast::http::error::need_more) {
            refuse(error);
        } else if (m_parser->is_done()) {
            send(m_service.serve({isSecure, std::move(m_head), m_parser->release()}));
        } else if (!error && !m_unparsed.empty()) {
            parse();
        } else {
            read();
        }
    }

    void refuse(ErrorCode error)
    {
        m_head += m_parser->get().body() + std::exchange(m_unparsed, {});
        m_service.record({isSecure, std::move(m_head)});
        Request unreadable;
        unreadable.keep_alive(false);
        send(replyTo(unreadable, errorAnswer(400, error.message())));
    }

    void send(Reply reply)
    {
        m_parser.reset();
        m_reply = std::move(reply);
        m_step = 0;
        m_timesDone = 0;
        goOn();
    }

    void goOn()
    {
        if (m_step == m_reply.steps.size()) {
            finish();
            return;
        }
        const Step& step = m_reply.steps[m_step];
        const bool isStepHeld = isHeld(step.released);
        if (isStepHeld || step.wait.count() > 0 || step.times != 1) {
            read(); // a write alone would not notice soon that the client has gone
        }
        if (isStepHeld) {
            wait(holdTime, &Connection::goOn);
        } else if (step.wait.count() > 0) {
            wait(step.wait, &Connection::write);
        } else {
            write();
        }
    }

    void write()
    {
        boost::asio::async_write(m_stream, boost::asio::buffer(m_reply.steps[m_step].bytes),
                                 then(&Connection::renegotiate));
    }

    /// Asks the client for another handshake, which the reading then makes; only TLS 1.2 has it.
    void renegotiate()
    {
        if constexpr (isSecure) {
            if (const auto& certificate = m_reply.steps[m_step].renegotiated) {
                auto* const tls = m_stream.native_handle();
                SSL_set_SSL_CTX(tls, m_authority->certificate(*certificate).tls->native_handle());
                SSL_set_options(tls,
                                SSL_OP_NO_SESSION_RESUMPTION_ON_RENEGOTIATION); // else nothing is presented
                SSL_renegotiate(tls);
                m_stream.async_handshake(boost::asio::ssl::stream_base::server,
                                         then(&Connection::countWritten));
                return;
            }
        }
        countWritten();
    }

    void countWritten()
    {
        if (++m_timesDone == m_reply.steps[m_step].times) {
            m_timesDone = 0;
            ++m_step;
        }
        goOn();
    }

    void finish()
    {
        switch (m_reply.afterwards) {
        case Afterwards::KeepAlive:
            startRequest();
            break;
        case Afterwards::Close:
            close();
            break;
        case Afterwards::Drop:
            drop();
            break;
        case Afterwards::Reset:
            reset();
            break;
        case Afterwards::Stay:
            read();
            break;
        }
    }

    /// Closing a socket with unread bytes resets the connection and can destroy the answer on its way; so
    /// the client is told first and gets a moment to end its side.
    void close()
    {
        wait(lingerTime, &Connection::drop);
        if constexpr (isSecure) {
            m_stream.async_shutdown(then(&Connection::drop));
        } else {
            ErrorCode alreadyGone;
            m_stream.shutdown(Socket::shutdown_send, alreadyGone);
            read();
        }
    }

    void reset()
    {
        ErrorCode alreadyGone;
        socket().set_option(boost::asio::socket_base::linger(true, 0), alreadyGone);
        drop();
    }

    void drop()
    {
        m_timer.cancel();
        ErrorCode alreadyGone;
        socket().close(alreadyGone);
    }

    auto& socket() { return m_stream.lowest_layer(); }

    Stream m_stream;
    boost::asio::steady_timer m_timer;
    Service& m_service;
    CertificateAuthority* m_authority;
    std::shared_ptr<const bool> m_released;
    std::vector<char> m_received; ///< what the read under way writes to
    bool m_isReading = false;
    std::string m_unparsed;
    std::optional<Parser> m_parser; ///< while a request is expected
    std::string m_head;
    Reply m_reply;
    std::size_t m_step = 0;
    std::uint64_t m_timesDone = 0;
    std::size_t m_ignored = 0;
};
} // namespace sandbox
