/// @file
/// How much of an answer an operation takes, and how long it waits.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace VantryIntegrationApi
{
struct ExchangeLimits
{
    std::uint64_t bodySize = 256ULL * 1024 * 1024;           ///< bytes of an answer's body
    std::uint64_t headSize = 1024ULL * 1024;                 ///< bytes read before the body begins
    std::chrono::milliseconds answerTime{10 * 60 * 1000};    ///< from the request's last byte to the answer's
    std::chrono::milliseconds standstillTime{3 * 60 * 1000}; ///< without progress of a body either way
};

/// Bytes of the bodies of one exchange; a total that is not known is 0.
struct Transfer
{
    std::uint64_t sent = 0;
    std::uint64_t toSend = 0;
    std::uint64_t received = 0;
    std::uint64_t toReceive = 0;
};

/// Called on the thread of the operation while it waits for the server, at least every 20 ms, and once when
/// the wait is over. False gives the operation up.
using TransferWatcher = std::function<bool(const Transfer&)>;
} // namespace VantryIntegrationApi
