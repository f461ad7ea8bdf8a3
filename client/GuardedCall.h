/// @file
/// The one place where exceptions of an exchange become a status.
#pragma once

#include "TAVIKVANTRYAPI.h"

#include <functional>

namespace VantryIntegrationApi::Utils
{
/// Calls `method` and turns every exception into a status. Never throws.
ResponseStatus safe_CallMethod(const std::function<ResponseStatus()>& method);
} // namespace VantryIntegrationApi::Utils
