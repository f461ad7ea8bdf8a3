/// @file
/// What this process can be made to run out of, by the names that the catalogue of faults gives it.
#pragma once

#include <map>
#include <string>

struct Shortage
{
    void (*begin)();
    void (*end)();
};

const std::map<std::string, Shortage>& shortages();
