#include "Turn.h"

namespace CInterface
{
std::mutex Turn::s_mutex;
std::atomic<std::thread::id> Turn::s_owner;
std::fenv_t Turn::s_callersFloatingPoint;

Turn::Turn(const std::fenv_t& callersFloatingPoint)
{
    if (isMine()) {
        throw Refusal{VANTRY_CALLED_FROM_CALLBACK};
    }
    m_lock = std::unique_lock(s_mutex);
    s_callersFloatingPoint = callersFloatingPoint;
    s_owner = std::this_thread::get_id();
}
} // namespace CInterface
