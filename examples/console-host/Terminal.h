/// @file
/// What the program asks of the system about its command line and its terminal.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// Prepares the terminal for UTF-8, until the program ends.
void prepareTerminal();

/// The arguments behind the program's name, in UTF-8.
std::vector<std::string> commandLineArguments(int argc, const char* const* argv);

/// An environment variable in UTF-8.
std::optional<std::string> environmentVariable(const std::string& name);

/// Reads a line that is not shown while it is typed; none at the end of the input.
std::optional<std::string> askSecretly(const std::string& question);
