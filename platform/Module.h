/// @file
/// The library's own module: its handle, and the threads that run its code.
#pragma once

#include "WindowsCalls.h"

#include <functional>

namespace Platform
{
/// Handle of the library's module as the system gave it at load.
HINSTANCE moduleHandle() noexcept;

/// Runs `work` on a thread of its own, which nothing waits for. The module stays loaded until that thread has
/// ended. An exception that leaves `work` ends the process.
/// @throws std::system_error if the system gives no thread
void startThread(std::function<void()> work);
} // namespace Platform
