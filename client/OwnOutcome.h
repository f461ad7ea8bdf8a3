/// @file
/// Outcomes of an operation that are the library's own.
#pragma once

#include "TAVIKVANTRYAPI.h"

#include <exception>

namespace VantryIntegrationApi
{
/// Statuses that are the library's own, not the server's.
constexpr int requestFailedStatus = 600;
constexpr int certificateRefusedStatus = 601;
constexpr int givenUpStatus = 602;

/// Ends an exchange with a status that the library has decided.
class OwnOutcome : public std::exception
{
public:
    explicit OwnOutcome(ResponseStatus status) : m_status(std::move(status)) {}
    const char* what() const noexcept override { return "The exchange was ended."; }
    const ResponseStatus& status() const { return m_status; }

private:
    ResponseStatus m_status;
};
} // namespace VantryIntegrationApi
