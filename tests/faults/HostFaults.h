/// @file
/// Faults of the host's own, by the names in the catalogue.
#pragma once

#include <functional>
#include <string>

struct Surroundings
{
    std::function<void(std::function<void()>)> onEveryLine; ///< sets what is called with each line of the log
    std::wstring endPoint;
};

/// Brings about the fault of this name.
/// @throws std::out_of_range for an unknown name
void beginHostFault(const std::string& name, const Surroundings& around);

/// Ends a shortage of the system's. What was set in the library stays: the caller sets it anew.
void endHostFault(const std::string& name);
