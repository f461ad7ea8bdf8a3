#pragma once

#include <string>
#include <variant>
#include <vector>

namespace sandbox
{
struct Options
{
    std::string user = "technician";
    std::string password = "wrench";
    std::vector<std::string> command; ///< empty: serve until a signal comes
};

/// The options, or the exit code of a program that has nothing more to do.
std::variant<Options, int> readOptions(const std::vector<std::string>& arguments);
} // namespace sandbox
