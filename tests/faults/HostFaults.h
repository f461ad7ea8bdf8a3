/// @file
/// Faults of the host's own, by the names in the catalogue.
#pragma once

#include "support/CapturedLog.h"

#include <string>

/// Brings about the fault of this name, at the endpoint that is set.
/// @throws std::out_of_range for an unknown name
void beginHostFault(const std::string& name, CapturedLog& log, const std::wstring& endPoint);

/// Ends a shortage of the system's. What was set in the library or the log stays: the caller sets it anew.
void endHostFault(const std::string& name);
