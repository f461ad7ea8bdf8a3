/// @file
/// A piece of an answer in the server's own bytes.
#pragma once

#include <cstdint>
#include <string>

/// Written `times` times (0: until the client goes), after a wait each.
struct Step
{
    std::string bytes;
    int waitMs = 0;
    std::uint64_t times = 1;
};
