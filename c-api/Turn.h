/// @file
/// Who runs in the library, and with which floating-point state.
#pragma once

#include "vantry.h"

#include "Module.h"

#include <atomic>
#include <cfenv>
#include <cstdint>
#include <mutex>
#include <new>
#include <stdexcept>
#include <thread>

namespace CInterface
{
/// Ends a call with a status; thrown.
struct Refusal
{
    vantry_status status;
};

/// The state `wanted` until the end of the scope, then what was there before.
class FloatingPoint
{
public:
    explicit FloatingPoint(const std::fenv_t* wanted) noexcept
    {
        std::feholdexcept(&m_before); // never fails
        std::fesetenv(wanted);
    }
    ~FloatingPoint() { std::fesetenv(&m_before); }
    FloatingPoint(const FloatingPoint&) = delete;
    FloatingPoint& operator=(const FloatingPoint&) = delete;

    const std::fenv_t& before() const noexcept { return m_before; }

private:
    std::fenv_t m_before{};
};

/// The right to use the client: one thread has it at a time.
class Turn
{
public:
    /// Waits for it.
    /// @throws Refusal if the thread has it, which is when a callback calls
    explicit Turn(const std::fenv_t& callersFloatingPoint)
    {
        if (isMine()) {
            throw Refusal{VANTRY_CALLED_FROM_CALLBACK};
        }
        m_lock = std::unique_lock(s_mutex);
        s_callersFloatingPoint = callersFloatingPoint;
        s_owner = std::this_thread::get_id();
    }
    ~Turn() { s_owner = std::thread::id(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    static bool isMine() noexcept { return s_owner == std::this_thread::get_id(); }

    /// The caller's floating-point state, for its callbacks. To be called by the thread whose turn it is.
    static const std::fenv_t* callersFloatingPoint() noexcept { return &s_callersFloatingPoint; }

private:
    inline static std::mutex s_mutex;
    inline static std::atomic<std::thread::id> s_owner;
    inline static std::fenv_t s_callersFloatingPoint;

    std::unique_lock<std::mutex> m_lock;
};

/// Runs `action` in the caller's turn. What it throws becomes a status.
template <typename Action>
std::int32_t inTurn(const Action& action) noexcept
{
    const Platform::RunningWork running;
    const FloatingPoint own(FE_DFL_ENV);
    try {
        const Turn turn(own.before());
        action();
        return VANTRY_OK;
    } catch (const Refusal& refusal) {
        return refusal.status;
    } catch (const std::bad_alloc&) {
        return VANTRY_OUT_OF_MEMORY;
    } catch (const std::length_error&) { // more than any memory
        return VANTRY_OUT_OF_MEMORY;
    } catch (...) {
        return VANTRY_REQUEST_FAILED;
    }
}

/// Runs `action`, which calls back, as the caller left the thread.
template <typename Action>
void callBack(const Action& action)
{
    const FloatingPoint callers(Turn::callersFloatingPoint());
    action();
}
} // namespace CInterface
