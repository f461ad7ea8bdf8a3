/// @file
/// What the six operations share before they send.
#pragma once

#include "VantryApi.h"

namespace VantryIntegrationApi
{
template <typename Step>
auto CVantryApi::prepared(const LumoFunction& log, const Step& step) -> std::optional<decltype(step())>
{
    try {
        return step();
    } catch (const std::exception& e) {
        const auto text = Platform::fromAnsi(e.what());
        LUMO_FATAL(log, L"Exception happened: " << text);
        m_lastResponse = {requestFailedStatus, text};
        return std::nullopt;
    }
}
} // namespace VantryIntegrationApi
