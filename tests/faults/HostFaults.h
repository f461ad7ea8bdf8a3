/// @file
/// What the host itself does, by the names that the catalogue gives it.
#pragma once

#include <functional>
#include <string>

struct Surroundings
{
    std::function<void(std::function<void()>)> onEveryLine; ///< has it called for each line of the log
    std::wstring endPoint;
};

/// Does it.
/// @throws std::out_of_range for a name that is none
void beginHostFault(const std::string& name, const Surroundings& around);

/// Undoes it, as far as it is no setting of the library's.
void endHostFault(const std::string& name);
