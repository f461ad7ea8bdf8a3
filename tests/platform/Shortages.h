/// @file
/// Shortages of resources that a test can bring about, by the names in the catalogue of faults.
#pragma once

#include <map>
#include <string>

struct Shortage
{
    void (*begin)();
    void (*end)();
};

const std::map<std::string, Shortage>& shortages();
