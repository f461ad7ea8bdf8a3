#include "Module.h"

#include <thread>
#include <utility>

// The shared object is linked never to be unloaded (nodelete), since threads of the REST SDK may outlive any
// request. So there is nothing to hold here, and the string table needs no handle.

HINSTANCE Platform::moduleHandle() noexcept
{
    return nullptr;
}

void Platform::startThread(std::function<void()> work)
{
    std::thread(std::move(work)).detach();
}
