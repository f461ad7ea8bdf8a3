/// @file
/// The library's own module: its handle and how long it stays loaded.
#pragma once

#include "WindowsCalls.h"

namespace Platform
{
/// Handle of the library's module as the system gave it at load.
HINSTANCE moduleHandle() noexcept;

/// Keeps the module loaded: from its construction until the thread that destroys it has ended, so that this
/// thread never returns into code that is gone. For the detached threads of asynchronous operations.
class ModuleReference
{
public:
    ModuleReference();
    ~ModuleReference(); // NOLINT(performance-trivially-destructible): on Windows it has work to do
    ModuleReference(ModuleReference&& other) noexcept;
    ModuleReference(const ModuleReference&) = delete;
    ModuleReference& operator=(const ModuleReference&) = delete;
    ModuleReference& operator=(ModuleReference&&) = delete;

private:
    HINSTANCE m_module;
};
} // namespace Platform
