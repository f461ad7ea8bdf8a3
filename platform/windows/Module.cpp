#include "Module.h"

#include "ModuleReferences.h"
#include "TaskScheduler.h"

#include <log4cxx/logmanager.h>

#include <exception>
#include <memory>
#include <system_error>
#include <utility>

namespace
{
HINSTANCE ownModule = nullptr;
const auto loggers = log4cxx::LogManager::getLoggerRepository();

struct EndingThread
{
    HINSTANCE module;
    HANDLE thread;
};

void CALLBACK threadEnded(PTP_CALLBACK_INSTANCE instance, PVOID context, PTP_WAIT wait,
                          TP_WAIT_RESULT /*result*/)
{
    const std::unique_ptr<EndingThread> ending(static_cast<EndingThread*>(context));
    FreeLibraryWhenCallbackReturns(instance, ending->module);
    CloseHandle(ending->thread); // ERROR_INVALID_HANDLE: not for our own handle
    CloseThreadpoolWait(wait);
}

/// noexcept: what leaves the work ends the process.
DWORD WINAPI runWork(LPVOID argument) noexcept
{
    const std::unique_ptr<std::function<void()>> work(static_cast<std::function<void()>*>(argument));
    (*work)();
    return 0;
}

/// The first exception of a process makes the run-time of mingw-w64 prepare what each thread has of its own,
/// under a lock. If that is a thread of the pool and the end of the process kills it there, libstdc++ waits
/// for the lock for ever when it is cleaned up. So it is prepared before there are such threads.
void prepareThreadStorage()
{
    static_cast<void>(std::current_exception());
}

/// The end of the process has killed a thread, perhaps while it wrote a line. log4cxx, which is cleaned up
/// after this module, would close that line's appender and wait for its lock for ever. So the appenders are
/// never closed.
void keepAppendersOpen()
{
    static_cast<void>(std::make_unique<log4cxx::spi::LoggerRepositoryPtr>(loggers).release());
}
} // namespace

/// The loader calls it after the module's objects have been made.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID endOfProcess)
{
    if (reason == DLL_PROCESS_ATTACH) {
        ownModule = module;
        prepareThreadStorage();
        Platform::runTasksWithModuleHeld();
    } else if (reason == DLL_PROCESS_DETACH && endOfProcess != nullptr && Platform::RunningWork::exists()) {
        keepAppendersOpen();
    }
    return TRUE;
}

HINSTANCE Platform::moduleHandle() noexcept
{
    return ownModule;
}

// No std::thread: that of mingw-w64 (winpthreads) ends with locks held that the run-time's own clean-up takes
// at the end of the process. A process that ends in that moment kills the thread and then waits for it for
// ever. A thread of the system does its clean-up under the loader's lock, which the end of the process waits
// for first.
void Platform::startThread(std::function<void()> work)
{
    auto owned = std::make_unique<std::function<void()>>(std::move(work));
    auto ending = std::make_unique<EndingThread>(EndingThread{holdModule(), nullptr});
    ending->thread = CreateThread(nullptr, 0, &runWork, owned.get(), 0, nullptr);
    if (ending->thread == nullptr) { // ERROR_NOT_ENOUGH_MEMORY, ERROR_MAX_THRDS_REACHED
        const auto error = static_cast<int>(GetLastError());
        FreeLibrary(ending->module); // not the last reference: this code is still running
        throw std::system_error(error, std::system_category(), "CreateThread");
    }
    static_cast<void>(owned.release()); // runWork owns it now
    auto* wait = CreateThreadpoolWait(&threadEnded, ending.get(), nullptr);
    if (wait == nullptr) { // ERROR_NOT_ENOUGH_MEMORY: the module stays loaded, which is the safe side
        CloseHandle(ending->thread);
        return;
    }
    SetThreadpoolWait(wait, ending.release()->thread, nullptr);
}
