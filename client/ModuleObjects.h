/// @file
/// The module's objects: made in this order when it is loaded, destroyed in the reverse when it is unloaded,
/// see `Platform::ModuleObject`.
#pragma once

#include "VantryApi.h"

#include <string>

namespace VantryIntegrationApi
{
extern log4cxx::LoggerPtr& g_moduleLogger; ///< of the functions that the module exports
extern CVantryApi& g_client;               ///< the one client of the process
// CVantryApi::m_logger is the third.

/// Logged at error level when an answer does not carry the code of success.
extern const std::wstring& g_requestErrorText;
} // namespace VantryIntegrationApi
