#include "ModuleReferences.h"

#include "Module.h"

namespace
{
/// There is no notice of the moment in which a thread has left the module to wait for; it needs microseconds.
constexpr LONGLONG releaseDelay = -250LL * 10'000; // 250 ms, relative, in units of 100 ns

void CALLBACK releaseModule(PTP_CALLBACK_INSTANCE instance, PVOID /*context*/, PTP_TIMER timer)
{
    FreeLibraryWhenCallbackReturns(instance, Platform::moduleHandle());
    CloseThreadpoolTimer(timer);
}
} // namespace

HINSTANCE Platform::holdModule() noexcept
{
    HINSTANCE module = nullptr;
    // ERROR_MOD_NOT_FOUND: not for an address of our own. Null is released as nothing.
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&holdModule),
                       &module);
    return module;
}

void Platform::releaseModuleSoon()
{
    auto* timer = CreateThreadpoolTimer(&releaseModule, nullptr, nullptr);
    if (timer == nullptr) { // ERROR_NOT_ENOUGH_MEMORY: the module stays loaded, which is the safe side
        return;
    }
    ULARGE_INTEGER due;
    due.QuadPart = static_cast<ULONGLONG>(releaseDelay);
    FILETIME dueTime{due.LowPart, due.HighPart};
    SetThreadpoolTimer(timer, &dueTime, 0, 0);
}
