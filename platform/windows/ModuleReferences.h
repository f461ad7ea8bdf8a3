/// @file
/// Counted references to the library's own module, for whatever runs its code on threads of the system.
#pragma once

#include <windows.h>

namespace Platform
{
/// Counts a reference to the module: it stays loaded until the reference has been given back, with
/// `FreeLibraryWhenCallbackReturns` or `releaseModuleSoon`. Null if the system gave none.
HINSTANCE holdModule() noexcept;

/// Gives a reference back when the calling thread, which is about to leave the module's code for good, has
/// had time to do so.
void releaseModuleSoon();
} // namespace Platform
