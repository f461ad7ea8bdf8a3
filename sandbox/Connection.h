#pragma once

#include "Service.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace sandbox
{

// One client's connection: reads requests, hands them to the service and writes its replies. Bytes are read
// here and fed to the parser, so that each request's own bytes are known exactly. A pending operation keeps
// the connection alive; it ends when none is left.
template <typename Stream>
class Connection : public std::enable_shared_from_this<Connection<Stream>>
{
public:
    Connection(Stream stream, Service& service)
        : m_stream(std::move(stream)), m_timer(m_stream.get_executor()), m_service(service)
    {}

    void start()
    {
        if constexpr (isSecure) {
            m_stream.async_handshake(boost::asio::ssl::stream_base::server,
                                     [self = this->shared_from_this()](ErrorCode error) {
                                         if (!error) {
                                             self->startRequest();
                                         }
                                     });
        } else {
            startRequest();
        }
    }

private:
    using ErrorCode = boost::system::error_code;
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    static constexpr bool isSecure = !std::is_same_v<Stream, boost::asio::ip::tcp::socket>;
    static constexpr std::size_t chunkSize = std::size_t{64} * 1024;
    static constexpr std::size_t headerLimit = std::size_t{64} * 1024;
    static constexpr std::size_t bodyLimit = std::size_t{64} * 1024 * 1024;
    static constexpr std::size_t rawLimit =
        bodyLimit + std::size_t{1024} * 1024; // chunk headers can outweigh the body
    static constexpr std::chrono::milliseconds lingerTime{200};

    void startRequest()
    {
        m_parser.emplace();
        m_parser->eager(true);
        m_parser->header_limit(headerLimit);
        m_parser->body_limit(bodyLimit);
        m_raw.clear();
        m_toldToContinue = false;
        if (m_buffer.size() > 0) {
            parse();
        } else {
            read();
        }
    }

    void read()
    {
        m_stream.async_read_some(m_buffer.prepare(chunkSize),
                                 [self = this->shared_from_this()](ErrorCode error, std::size_t length) {
                                     if (!error) {
                                         self->m_buffer.commit(length);
                                         self->parse();
                                     }
                                 });
    }

    void parse()
    {
        ErrorCode error;
        const std::size_t used = m_parser->put(m_buffer.cdata(), error);
        m_raw.append(static_cast<const char*>(m_buffer.cdata().data()), used);
        m_buffer.consume(used);
        if (m_raw.size() > rawLimit) {
            error = boost::beast::http::error::body_limit;
        }
        if (error && error != boost::beast::http::error::need_more) {
            refuse(error);
        } else if (m_parser->is_done()) {
            answer();
        } else if (waitsForContinue()) {
            tellToContinue();
        } else {
            read();
        }
    }

    bool waitsForContinue() const
    {
        return m_parser->is_header_done() && !m_toldToContinue &&
               boost::iequals(m_parser->get()[boost::beast::http::field::expect], "100-continue");
    }

    void tellToContinue()
    {
        m_toldToContinue = true;
        m_reply.bytes = "HTTP/1.1 100 Continue\r\n\r\n";
        boost::asio::async_write(m_stream, boost::asio::buffer(m_reply.bytes),
                                 [self = this->shared_from_this()](ErrorCode error, std::size_t) {
                                     if (!error) {
                                         self->read();
                                     }
                                 });
    }

    void answer()
    {
        const Request request = m_parser->release();
        m_service.received({isSecure, std::string(view(request.method_string())),
                            std::string(view(request.target())), std::move(m_raw)});
        send(m_service.reply(request));
    }

    void refuse(ErrorCode error)
    {
        namespace http = boost::beast::http;
        m_raw.append(static_cast<const char*>(m_buffer.cdata().data()), m_buffer.size());
        m_buffer.clear();
        m_service.received({isSecure, {}, {}, std::move(m_raw)});
        const unsigned status = error == http::error::body_limit     ? 413
                                : error == http::error::header_limit ? 431
                                                                     : 400;
        send({serialize(errorAnswer(status, error.message()), false), std::chrono::milliseconds(0),
              Afterwards::Close});
    }

    void send(Reply reply)
    {
        m_reply = std::move(reply);
        if (m_reply.delay.count() == 0) {
            write();
            return;
        }
        m_timer.expires_after(m_reply.delay);
        m_timer.async_wait([self = this->shared_from_this()](ErrorCode error) {
            if (!error) {
                self->write();
            }
        });
    }

    void write()
    {
        boost::asio::async_write(m_stream, boost::asio::buffer(m_reply.bytes),
                                 [self = this->shared_from_this()](ErrorCode error, std::size_t) {
                                     if (!error) {
                                         self->goOn();
                                     }
                                 });
    }

    void goOn()
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
        }
    }

    // Closing a socket with unread bytes resets the connection and can destroy the answer on its way; so the
    // client is told first and gets a moment to end its side.
    void close()
    {
        m_timer.expires_after(lingerTime);
        m_timer.async_wait([self = this->shared_from_this()](ErrorCode error) {
            if (!error) {
                self->drop();
            }
        });
        if constexpr (isSecure) {
            m_stream.async_shutdown([self = this->shared_from_this()](ErrorCode) { self->drop(); });
        } else {
            ErrorCode alreadyGone;
            m_stream.shutdown(boost::asio::ip::tcp::socket::shutdown_send, alreadyGone);
            discard();
        }
    }

    void discard()
    {
        m_buffer.clear();
        m_stream.async_read_some(m_buffer.prepare(chunkSize),
                                 [self = this->shared_from_this()](ErrorCode error, std::size_t) {
                                     if (error) {
                                         self->drop();
                                     } else {
                                         self->discard();
                                     }
                                 });
    }

    void drop()
    {
        m_timer.cancel();
        ErrorCode alreadyGone;
        m_stream.lowest_layer().close(alreadyGone);
    }

    Stream m_stream;
    boost::asio::steady_timer m_timer;
    Service& m_service;
    boost::beast::flat_buffer m_buffer;
    std::optional<Parser> m_parser;
    std::string m_raw;
    bool m_toldToContinue = false;
    Reply m_reply;
};

} // namespace sandbox
