#pragma once

#include "Options.h"

/// Configures log4cxx for the process: without one of the log options, nothing is logged. When the process
/// ends, log4cxx finishes: a configuration may have started threads, and the process would wait for them.
/// @throws std::runtime_error if the log or its configuration cannot be used
void configureLog(const Options& options);
