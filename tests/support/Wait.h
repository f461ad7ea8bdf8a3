/// @file
/// Waiting for what another thread or process does.
#pragma once

#include <chrono>
#include <thread>

/// Whether `isTrue` becomes so within the time.
template <typename Condition>
bool becomesTrue(std::chrono::seconds limit, const Condition& isTrue)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!isTrue()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}
