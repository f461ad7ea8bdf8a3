/// @file
/// The one place where exceptions of an exchange become a status.
#pragma once

#include "ServerAnswer.h"

#include <functional>

namespace VantryIntegrationApi::Utils
{
/// Calls `method` and turns every exception into a status, with no answer. Never throws.
ServerAnswer safe_CallMethod(const std::function<ServerAnswer()>& method);
} // namespace VantryIntegrationApi::Utils
