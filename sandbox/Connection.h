#pragma once

#include "Service.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace sandbox
{
/// One client's connection: reads requests, hands them to the service and writes its replies. Bytes are read
/// here and fed to the parser, so that each request's own bytes are known exactly. A pending operation keeps
/// the connection alive; it ends when none is left.
template <typename Stream>
class Connection : public std::enable_shared_from_this<Connection<Stream>>
{
public:
    Connection(Stream stream, Service& service)
        : m_stream(std::move(stream)), m_timer(m_stream.get_executor()), m_service(service),
          m_received(chunkSize)
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

    void misbehave(Misbehaviour misbehaviour)
    {
        if (!misbehaviour.awaitsClient) {
            send(std::move(misbehaviour.reply));
            return;
        }
        m_stream.async_read_some(boost::asio::buffer(m_received),
                                 [self = this->shared_from_this(),
                                  reply = std::move(misbehaviour.reply)](ErrorCode error, std::size_t) {
                                     if (!error) {
                                         self->send(reply);
                                     }
                                 });
    }

private:
    using ErrorCode = boost::system::error_code;
    using Socket = boost::asio::ip::tcp::socket;
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    static constexpr bool isSecure = !std::is_same_v<Stream, Socket>;
    static constexpr std::size_t chunkSize = std::size_t{64} * 1024;
    static constexpr std::size_t headerLimit = std::size_t{64} * 1024;
    static constexpr std::size_t bodyLimit = std::size_t{512} * 1024 * 1024;
    static constexpr std::size_t rawLimit =
        bodyLimit + std::size_t{1024} * 1024; // chunk headers can outweigh the body
    static constexpr std::chrono::milliseconds lingerTime{200};
    static constexpr std::chrono::minutes silentTime{2};

    void startRequest()
    {
        m_parser.emplace();
        m_parser->eager(true);
        m_parser->header_limit(headerLimit);
        m_parser->body_limit(bodyLimit);
        m_raw.clear();
        m_toldToContinue = false;
        if (m_unparsed.empty()) {
            read();
        } else {
            parse();
        }
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
        if (m_parser) {
            m_unparsed.append(m_received.data(), length);
            parse();
        } else if (m_reply.afterwards == Afterwards::KeepAlive) {
            m_unparsed.append(m_received.data(), length);
            read();
        } else if (m_reply.afterwards == Afterwards::Stay && takesTooMuch(length)) {
            readAfterSilence();
        } else {
            read();
        }
    }

    /// Once, when a silent connection has taken as much as it should before its client is left waiting.
    bool takesTooMuch(std::size_t length)
    {
        const bool tookTooMuch = m_ignored >= chunkSize;
        m_ignored += length;
        return !tookTooMuch && m_ignored >= chunkSize;
    }

    /// A client that sends much is left waiting. Reading goes on in the end, because a client's goodbye
    /// stands behind all that it has sent.
    void readAfterSilence()
    {
        m_timer.expires_after(silentTime);
        m_timer.async_wait([self = this->shared_from_this()](ErrorCode error) {
            if (!error) {
                self->read();
            }
        });
    }

    void parse()
    {
        ErrorCode error;
        const std::size_t used = m_parser->put(boost::asio::buffer(m_unparsed), error);
        m_raw.append(m_unparsed, 0, used);
        m_unparsed.erase(0, used);
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
        static constexpr std::string_view answer = "HTTP/1.1 100 Continue\r\n\r\n";
        m_toldToContinue = true;
        boost::asio::async_write(m_stream, boost::asio::buffer(answer),
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
        m_raw += std::exchange(m_unparsed, {});
        m_service.received({isSecure, {}, {}, std::move(m_raw)});
        const unsigned status = error == http::error::body_limit     ? 413
                                : error == http::error::header_limit ? 431
                                                                     : 400;
        send({{{serialize(errorAnswer(status, error.message()), false)}}, Afterwards::Close});
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
        if (step.wait.count() > 0 || step.times != 1) {
            read(); // a write alone would not notice soon that the client has gone
        }
        if (step.wait.count() == 0) {
            write();
            return;
        }
        m_timer.expires_after(step.wait);
        m_timer.async_wait([self = this->shared_from_this()](ErrorCode error) {
            if (!error) {
                self->write();
            }
        });
    }

    void write()
    {
        boost::asio::async_write(m_stream, boost::asio::buffer(m_reply.steps[m_step].bytes),
                                 [self = this->shared_from_this()](ErrorCode error, std::size_t) {
                                     if (!error && self->socket().is_open()) {
                                         self->written();
                                     }
                                 });
    }

    void written()
    {
        const std::uint64_t times = m_reply.steps[m_step].times;
        if (++m_timesDone == times) {
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
    std::vector<char> m_received; ///< what the read under way writes to
    bool m_isReading = false;
    std::string m_unparsed;
    std::optional<Parser> m_parser; ///< while a request is expected
    std::string m_raw;
    bool m_toldToContinue = false;
    Reply m_reply;
    std::size_t m_step = 0;
    std::uint64_t m_timesDone = 0;
    std::size_t m_ignored = 0;
};
} // namespace sandbox
