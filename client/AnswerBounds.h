/// @file
/// How much of an answer, and for how long, an operation reads.
#pragma once

#include <cpprest/http_msg.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

namespace VantryIntegrationApi
{
constexpr std::uint64_t answerSizeLimit = 256ULL * 1024 * 1024; ///< bytes of a body
constexpr std::chrono::minutes answerTimeLimit{10};             ///< from a body's first bytes on

/// A progress handler that ends a request whose answer goes beyond the bounds. For one request alone.
class AnswerBounds
{
public:
    explicit AnswerBounds(std::uint64_t sizeLimit = answerSizeLimit,
                          std::chrono::steady_clock::duration timeLimit = answerTimeLimit)
        : m_sizeLimit(sizeLimit), m_timeLimit(timeLimit)
    {}

    /// @throws web::http::http_exception whose error code's message names the bound
    void operator()(web::http::message_direction::direction direction, utility::size64_t size);

    /// From now on, on every copy, the next bytes end the request.
    void giveUp() { *m_givenUp = true; }

private:
    std::uint64_t m_sizeLimit;
    std::chrono::steady_clock::duration m_timeLimit;
    std::chrono::steady_clock::time_point m_start; ///< the clock's epoch: nothing has come yet
    std::shared_ptr<std::atomic<bool>> m_givenUp = std::make_shared<std::atomic<bool>>(false);
};

/// Bounds the answer to a request, and gives up, when it goes away, what has not come of it: nothing is
/// downloaded on behind the operation's back. The request ends itself, at the next bytes. A cancellation from
/// here could meet the request's own end, and the REST SDK would then close WinHTTP's handle twice.
class BoundedAnswer
{
public:
    explicit BoundedAnswer(web::http::http_request& request) { request.set_progress_handler(m_bounds); }
    ~BoundedAnswer() { m_bounds.giveUp(); }
    BoundedAnswer(const BoundedAnswer&) = delete;
    BoundedAnswer(BoundedAnswer&&) = delete;
    BoundedAnswer& operator=(const BoundedAnswer&) = delete;
    BoundedAnswer& operator=(BoundedAnswer&&) = delete;

private:
    AnswerBounds m_bounds;
};
} // namespace VantryIntegrationApi
