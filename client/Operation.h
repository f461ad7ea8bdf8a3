/// @file
/// What the six operations share around their exchange.
#pragma once

#include "ModuleTexts.h"
#include "OwnOutcome.h"
#include "StringTable.h"
#include "VantryApi.h"

#include <new>

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

template <typename Step>
void CVantryApi::readAnswer(const LumoFunction& log, const Step& step)
{
    try {
        step();
    } catch (const std::bad_alloc& e) {
        m_ticketList = {}; // gives memory back
        LUMO_FATAL(log, L"std::exception happened: " << Platform::fromAnsi(e.what()));
        m_lastResponse = {requestFailedStatus, Utils::LoadStringW(IDS_REQUEST_FAILED)};
    }
}
} // namespace VantryIntegrationApi
