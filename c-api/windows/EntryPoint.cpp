/// @file
/// What the loader calls in place of the run-time's own entry point.
///
/// winpthreads is linked into this file. It gives each thread that runs this file's code an object with two
/// handles, frees it when the thread ends, and counts on staying loaded till then. But a thread of the host
/// or of the system's pool outlives this module. So what winpthreads still has is freed here, after the
/// clean-up of the run-time, when no code of this module follows.
#include <pthread.h>
#include <windows.h>

#include <atomic>

// NOLINTBEGIN(bugprone-reserved-identifier): names of winpthreads, in no header of it, and of the linker
extern "C" const PIMAGE_TLS_CALLBACK __xl_f;
extern "C" struct _pthread_v* __pth_gpointer_locked(pthread_t id);
extern "C" int __real_pthread_rwlock_wrlock(pthread_rwlock_t* lock);
extern "C" int __wrap_pthread_rwlock_wrlock(pthread_rwlock_t* lock);
// NOLINTEND(bugprone-reserved-identifier)

extern "C" BOOL WINAPI DllMainCRTStartup(HANDLE module, DWORD reason, LPVOID endOfProcess);
extern "C" BOOL WINAPI vantryEntryPoint(HANDLE module, DWORD reason, LPVOID endOfProcess);

namespace
{
std::atomic<pthread_rwlock_t*> lastWriteLock = nullptr;

/// The lock of the thread-specific keys, which has no name: it is the one that a new key takes. Null if there
/// is no memory for a key.
pthread_rwlock_t* keyLock()
{
    pthread_key_t key = 0;
    return pthread_key_create(&key, nullptr) == 0 ? lastWriteLock.load() : nullptr;
}

/// Where winpthreads keeps the calling thread's object.
DWORD slotOf(const void* object)
{
    DWORD slot = 0;
    while (TlsGetValue(slot) != object) {
        ++slot;
    }
    return slot;
}

/// winpthreads numbers the objects upwards. Its callback frees the one in the calling thread's slot.
void freeThreadObjects(HANDLE module, DWORD slot)
{
    TlsSetValue(slot, nullptr);
    const auto newest = pthread_self();
    for (pthread_t id = 1; id <= newest; ++id) {
        if (auto* const object = __pth_gpointer_locked(id)) {
            TlsSetValue(slot, object);
            __xl_f(module, DLL_THREAD_DETACH, nullptr);
        }
    }
}

void freeWhatThreadsLeft(HANDLE module)
{
    auto* const lock = keyLock();
    const auto* const own = __pth_gpointer_locked(pthread_self());
    if (lock == nullptr || own == nullptr) { // no memory: the handles stay, which is the safe side
        return;
    }
    const auto slot = slotOf(own);
    freeThreadObjects(module, slot);
    pthread_rwlock_destroy(lock); // two semaphores
    TlsFree(slot);
}
} // namespace

/// The linker (`--wrap`) leads the calls of `pthread_rwlock_wrlock` here.
int __wrap_pthread_rwlock_wrlock(pthread_rwlock_t* lock)
{
    lastWriteLock = lock;
    return __real_pthread_rwlock_wrlock(lock);
}

BOOL vantryEntryPoint(HANDLE module, DWORD reason, LPVOID endOfProcess)
{
    const auto done = DllMainCRTStartup(module, reason, endOfProcess);
    if (reason == DLL_PROCESS_DETACH && endOfProcess == nullptr) {
        freeWhatThreadsLeft(module);
    }
    return done;
}
