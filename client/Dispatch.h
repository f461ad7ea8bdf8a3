/// @file
/// Where an operation runs.
#pragma once

#include "Module.h"
#include "VantryApi.h"

#include <tuple>

namespace VantryIntegrationApi
{
template <typename... Parameters>
void CVantryApi::dispatch(const char* name, void (CVantryApi::*operation)(Parameters...),
                          const std::decay_t<Parameters>&... arguments)
{
    const Platform::RunningWork running;
    if (m_hwnd == nullptr) {
        LUMO_LINE(m_logger, Trace, "Sync. " << name << "()");
        (this->*operation)(arguments...);
        return;
    }
    LUMO_LINE(m_logger, Trace, "Async. " << name << "()");
    Platform::startThread([this, operation, running, copies = std::tuple(arguments...)] {
        try {
            std::apply([&](const auto&... copied) { (this->*operation)(copied...); }, copies);
        } catch (...) {
            // It ends the process all the same. But only an exception that is caught is sure to unwind the
            // stack first, and so to have the window told.
            throw;
        }
    });
}
} // namespace VantryIntegrationApi
