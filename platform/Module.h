/// @file
/// The library's own module: its handle, the work that runs in it, and its objects.
#pragma once

#include "WindowsCalls.h"

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace Platform
{
/// Handle of the library's module as the system gave it at load.
HINSTANCE moduleHandle() noexcept;

/// Runs `work` on a thread of its own, which nothing waits for. The module stays loaded until that thread has
/// ended. An exception that leaves `work` ends the process.
/// @throws std::system_error if the system gives no thread
void startThread(std::function<void()> work);

/// Work runs in the module as long as one of these lives.
class RunningWork
{
public:
    RunningWork() noexcept { ++s_count; }
    RunningWork(const RunningWork& /*other*/) noexcept : RunningWork() {}
    RunningWork(RunningWork&& /*other*/) noexcept : RunningWork() {}
    RunningWork& operator=(const RunningWork&) = delete;
    RunningWork& operator=(RunningWork&&) = delete;
    ~RunningWork() { --s_count; }

    static bool exists() noexcept { return s_count != 0; }

private:
    inline static std::atomic<unsigned> s_count;
};

/// An object that is made when the module is loaded, or first used, and destroyed when it is unloaded. But
/// work that runs at the end of a process may go on using it, so then it is left as it is.
template <typename Object>
class ModuleObject
{
public:
    template <typename... Arguments>
    explicit ModuleObject(Arguments&&... arguments) : object(std::forward<Arguments>(arguments)...)
    {}
    ~ModuleObject()
    {
        if (!RunningWork::exists()) {
            std::destroy_at(&object);
        }
    }
    ModuleObject(const ModuleObject&) = delete;
    ModuleObject(ModuleObject&&) = delete;
    ModuleObject& operator=(const ModuleObject&) = delete;
    ModuleObject& operator=(ModuleObject&&) = delete;

    union {
        Object object;
    };
};
} // namespace Platform
