/// @file
/// References to the library's own module, for the means of this platform that run its code on other threads.
#pragma once

#include <windows.h>

namespace Platform
{
/// Counts a reference to the module: it stays loaded until the reference has been given back with
/// `FreeLibraryWhenCallbackReturns`. Null if the system gave none.
HINSTANCE holdModule() noexcept;
} // namespace Platform
