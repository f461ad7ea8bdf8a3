/// @file
/// How much of an answer, and for how long, an operation reads.
#pragma once

#include <cpprest/http_msg.h>

#include <chrono>
#include <cstdint>

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

private:
    std::uint64_t m_sizeLimit;
    std::chrono::steady_clock::duration m_timeLimit;
    std::chrono::steady_clock::time_point m_start; ///< the clock's epoch: nothing has come yet
};
} // namespace VantryIntegrationApi
