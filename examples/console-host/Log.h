#pragma once

#include "Options.h"

/// The log4cxx configuration of the process: without one of the log options, nothing is logged.
class Log
{
public:
    /// @throws std::runtime_error if the log or its configuration cannot be used
    explicit Log(const Options& options);

    /// Lets log4cxx finish: a configuration may have started threads, and the process would wait for them.
    ~Log();

    Log(const Log&) = delete;
    Log(Log&&) = delete;
    Log& operator=(const Log&) = delete;
    Log& operator=(Log&&) = delete;
};
