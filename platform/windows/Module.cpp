#include "Module.h"

#include "ModuleRelease.h"
#include "TaskScheduler.h"

#include <memory>
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
    CloseHandle(ending->thread); // ERROR_INVALID_HANDLE: not for our own duplicate
    CloseThreadpoolWait(wait);
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

HINSTANCE Platform::holdModule() noexcept
{
    HINSTANCE module = nullptr;
    // ERROR_MOD_NOT_FOUND: not for an address of our own. Null is released as nothing.
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&holdModule),
                       &module);
    return module;
}

Platform::ModuleReference::ModuleReference() : m_module(holdModule()) {}

Platform::ModuleReference::ModuleReference(ModuleReference&& other) noexcept
    : m_module(std::exchange(other.m_module, nullptr))
{}

// Whatever fails here leaves the module loaded for good, which is the safe side.
Platform::ModuleReference::~ModuleReference()
{
    if (m_module == nullptr) {
        return;
    }
    auto ending = std::make_unique<EndingThread>(EndingThread{m_module, nullptr});
    // ERROR_NO_SYSTEM_RESOURCES
    if (DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &ending->thread,
                        SYNCHRONIZE, FALSE, 0) == FALSE) {
        return;
    }
    auto* wait = CreateThreadpoolWait(&threadEnded, ending.get(), nullptr); // null: ERROR_NOT_ENOUGH_MEMORY
    if (wait == nullptr) {
        CloseHandle(ending->thread);
        return;
    }
    SetThreadpoolWait(wait, ending.release()->thread, nullptr);
}
