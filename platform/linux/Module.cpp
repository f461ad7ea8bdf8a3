#include "Module.h"

#include <openssl/crypto.h>

#include <thread>
#include <utility>

// The shared object is linked never to be unloaded (nodelete), since threads of the REST SDK may outlive any
// request. So there is nothing to hold here, and the string table needs no handle.

namespace
{
/// OpenSSL's clean-up at the end of the process would pull its state from under threads of the REST SDK that
/// still use it. Asked for when the module is loaded, since the first to ask decides.
const bool opensslStaysUsable = OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) == 1;
} // namespace

HINSTANCE Platform::moduleHandle() noexcept
{
    return nullptr;
}

void Platform::startThread(std::function<void()> work)
{
    std::thread(std::move(work)).detach();
}
