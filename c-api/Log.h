/// @file
/// Where the lines of the library's loggers go. The loggers are a hierarchy of their own: nothing but these
/// functions configures it, and nobody else's lines come here.
#pragma once

#include "vantry.h"

#include <cstdint>

namespace CInterface::Log
{
// All are for the thread whose turn it is.

/// Where the lines of `level` and above go to; null: nowhere.
/// @throws Refusal if there is no such level
void setCallback(vantry_log_callback callback, void* user, std::int32_t level);
bool hasCallback();

/// The file that the lines of `level` and above are appended to, in UTF-8; null: nowhere.
/// @throws Refusal if there is no such level, or if the file cannot be opened; all stays as it was then
void setFile(const char* path, std::int32_t level);

/// Hands the callback the lines that other threads have written.
void deliver();
} // namespace CInterface::Log
