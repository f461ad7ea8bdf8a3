#include "BoundedExchange.h"

#include "Module.h"
#include "OwnOutcome.h"
#include "RequestConnection.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>

using std::chrono::steady_clock;
using web::http::http_response;
namespace message_direction = web::http::message_direction;

namespace
{
enum Limit : int
{
    BodySize = 1,
    AnswerTime = 2,
    HeadSize = 3,
    Standstill = 4,
    Unwanted = 5
};

class LimitCategory : public std::error_category
{
public:
    const char* name() const noexcept override { return "limits of an exchange"; }

    std::string message(int limit) const override
    {
        switch (limit) {
        case BodySize:
            return "The answer of the server is longer than 256 MiB.";
        case AnswerTime:
            return "The answer of the server takes longer than 10 minutes.";
        case HeadSize:
            return "The head of the server's answer is longer than 1 MiB.";
        case Standstill:
            return "The server has neither taken nor sent anything for 3 minutes.";
        default:
            return "The rest of the server's answer is not read.";
        }
    }
};

[[noreturn]] void refuse(Limit limit)
{
    static const Platform::ModuleObject<LimitCategory> category;
    throw web::http::http_exception(limit, category.object);
}

/// What is read at once, so that some of the body may come with the head's end.
constexpr std::uint64_t readAhead = 128ULL * 1024;

/// What a body of `size` bytes takes on the connection at most: with its chunks' heads, and TLS.
std::uint64_t onTheWire(std::uint64_t size)
{
    constexpr std::uint64_t share = 16;
    return size + size / share;
}

/// Runs what follows a task on the thread that ends the task, so that no other has to be woken.
class SameThread : public pplx::scheduler_interface
{
public:
    void schedule(pplx::TaskProc_t procedure, void* argument) override { procedure(argument); }
};

pplx::task_options onTheSameThread()
{
    static SameThread scheduler;
    return {pplx::scheduler_ptr(&scheduler)};
}
} // namespace

namespace VantryIntegrationApi
{
pplx::task<utility::size64_t> bodyOf(const http_response& response)
{
    return pplx::create_task(response._get_impl()->_get_data_available());
}

/// Shared by the operation's thread and those of the REST SDK.
class BoundedExchange::State
{
public:
    State(const ExchangeLimits& limits, std::shared_ptr<Platform::RequestConnection> connection,
          std::uint64_t toSend)
        : m_limits(limits), m_connection(std::move(connection))
    {
        m_transfer.toSend = toSend;
    }

    /// The REST SDK's report of a body's progress; what it throws ends the request.
    void moved(message_direction::direction direction, std::uint64_t size)
    {
        m_connection->opened();
        const std::lock_guard lock(m_mutex);
        if (m_givenUp) {
            refuse(Unwanted);
        }
        m_lastMove = steady_clock::now();
        if (direction == message_direction::upload) {
            m_transfer.sent = size;
            m_lastSent = m_lastMove;
            return;
        }
        m_transfer.received = size;
        if (size > m_limits.bodySize) {
            refuse(BodySize);
        }
    }

    /// On the operation's thread, before its wait: done when the REST SDK has read the answer's head.
    void await(const pplx::task<http_response>& answered) { m_answered = answered; }

    /// @throws what the REST SDK threw instead of giving an answer
    http_response takeHead(const pplx::task<http_response>& answered)
    {
        auto response = answered.get();
        const std::lock_guard lock(m_mutex);
        m_transfer.toReceive = response.headers().content_length();
        if (!m_givenUp) {
            m_response = response;
        }
        return response;
    }

    /// When the wait is over.
    http_response& response() { return m_response; }

    void finish(std::exception_ptr failure = nullptr)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_failure = std::move(failure);
            m_finished = true;
        }
        m_changed.notify_all();
    }

    /// The connection has nothing more to give.
    void finishWithBody()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_bodyEnded = true;
        }
        finish();
    }

    void wait(const TransferWatcher& watcher)
    {
        constexpr std::chrono::milliseconds look{20};
        std::unique_lock lock(m_mutex);
        while (!m_changed.wait_for(lock, look, [this] { return m_finished; })) {
            requireWithinLimits();
            if (watcher) {
                const auto transfer = m_transfer;
                lock.unlock(); // the host's code
                if (!watcher(transfer)) {
                    throw OwnOutcome({givenUpStatus, L"The host has given the operation up."});
                }
                lock.lock();
            }
        }
        if (watcher) {
            const auto transfer = m_transfer;
            lock.unlock();
            watcher(transfer);
        }
        if (m_failure) {
            std::rethrow_exception(m_failure);
        }
    }

    void giveUp()
    {
        bool isLeft = true;
        {
            const std::lock_guard lock(m_mutex);
            m_givenUp = true;
            isLeft = !m_bodyEnded;
            // Both may keep the request alive, which keeps this alive.
            m_response = {};
            m_answered = {};
        }
        if (isLeft) {
            m_connection->end();
        }
    }

private:
    void requireWithinLimits()
    {
        const auto now = steady_clock::now();
        watchTheWire(now);
        if (now - m_lastMove > m_limits.standstillTime) {
            refuse(Standstill);
        }
        if (now - m_lastSent > m_limits.answerTime && m_answered.is_done()) {
            refuse(AnswerTime);
        }
    }

    /// The REST SDK reads a head, or a whole chunk, into memory before it reports any of it.
    void watchTheWire(steady_clock::time_point now)
    {
        const auto read = m_connection->bytesRead();
        if (!read) {
            return;
        }
        // After the look at the connection: it is done before any more than the head is read.
        const bool headRead = m_answered.is_done();
        if (!headRead && *read > m_limits.headSize + readAhead) {
            refuse(HeadSize);
        }
        if (*read > m_limits.headSize + onTheWire(m_limits.bodySize)) {
            refuse(BodySize);
        }
        if (headRead && *read != m_bytesRead) {
            m_lastMove = now;
        }
        m_bytesRead = *read;
    }

    const ExchangeLimits m_limits;
    const std::shared_ptr<Platform::RequestConnection> m_connection;
    pplx::task<http_response> m_answered; ///< used by the operation's thread alone
    std::mutex m_mutex;                   ///< guards what follows
    std::condition_variable m_changed;
    Transfer m_transfer;
    steady_clock::time_point m_lastMove = steady_clock::now();
    steady_clock::time_point m_lastSent = m_lastMove;
    std::uint64_t m_bytesRead = 0;
    bool m_givenUp = false;
    bool m_finished = false;
    bool m_bodyEnded = false;
    http_response m_response;
    std::exception_ptr m_failure;
};

BoundedExchange::BoundedExchange(web::uri base, web::http::client::http_client_config config,
                                 web::http::http_request request, const ExchangeLimits& limits,
                                 BodyWanted wanted)
{
    auto connection = Platform::watchConnection(config, base, request);
    m_state = std::make_shared<State>(limits, std::move(connection), request.headers().content_length());
    request.set_progress_handler(
        [state = m_state](message_direction::direction direction, utility::size64_t size) {
            state->moved(direction, size);
        });
    web::http::client::http_client client(base, config);
    const auto answered = client.request(request);
    m_state->await(answered);
    answered.then(
        [state = m_state, wanted](const pplx::task<http_response>& head) {
            http_response response;
            try {
                response = state->takeHead(head);
            } catch (...) {
                state->finish(std::current_exception());
                return;
            }
            if (!wanted(response)) {
                state->finish();
                return;
            }
            // If it has failed, whoever reads it finds out.
            const auto finish = [state](const pplx::task<utility::size64_t>& /*body*/) {
                state->finishWithBody();
            };
            bodyOf(response).then(finish, onTheSameThread());
        },
        onTheSameThread());
}

BoundedExchange::~BoundedExchange()
{
    m_state->giveUp();
}

http_response& BoundedExchange::wait(const TransferWatcher& watcher)
{
    m_state->wait(watcher);
    return m_state->response();
}
} // namespace VantryIntegrationApi
