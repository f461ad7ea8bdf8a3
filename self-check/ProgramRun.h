/// @file
/// A program run to its end, with all that it writes.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

struct ProgramRun
{
    bool isInTime; ///< else it was ended because it took longer than allowed
    int exitCode;
    std::string output;
};

/// @throws std::system_error if the program cannot be started
ProgramRun runProgram(const std::filesystem::path& program, const std::vector<std::wstring>& arguments,
                      std::chrono::seconds limit);
