/// @file
/// A program run to its end, with all that it writes.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

struct ProgramRun
{
    bool isInTime; ///< else it was ended because it took longer than allowed
    int exitCode;
    std::string output;
};

/// `argument` must hold nothing that a command line gives a meaning.
/// @throws std::system_error if the program cannot be started
ProgramRun runProgram(const std::filesystem::path& program, const std::wstring& argument,
                      std::chrono::seconds limit);
