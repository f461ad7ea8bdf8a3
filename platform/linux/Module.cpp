#include "Module.h"

#include <utility>

// The shared object is linked never to be unloaded (nodelete), since threads of the REST SDK may outlive any
// request. So there is nothing to hold here, and the string table needs no handle.

HINSTANCE Platform::moduleHandle() noexcept
{
    return nullptr;
}

Platform::ModuleReference::ModuleReference() : m_module(moduleHandle()) {}

Platform::ModuleReference::~ModuleReference() = default;

Platform::ModuleReference::ModuleReference(ModuleReference&& other) noexcept
    : m_module(std::exchange(other.m_module, nullptr))
{}
