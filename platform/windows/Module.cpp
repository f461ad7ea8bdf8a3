#include "Module.h"

#include "ModuleReferences.h"
#include "TaskScheduler.h"

#include <memory>
#include <system_error>
#include <utility>

namespace
{
HINSTANCE ownModule = nullptr;

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
} // namespace

/// The loader calls it after the module's objects have been made.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) {
        ownModule = module;
        Platform::runTasksWithModuleHeld();
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
