/// @file
/// The six operations as a host calls them, each with records of its own.
#pragma once

#include <ostream>
#include <string>
#include <vector>

struct Operation
{
    std::wstring exportName;
    std::wstring member;
    int success;       ///< the code that counts as success
    std::wstring path; ///< what the masked URL holds behind the endpoint when nothing was saved before
    void (*start)();
};

const std::vector<Operation>& operations();
const Operation& operation(const std::wstring& exportName);

/// Names an instance of a test over the operations.
std::ostream& operator<<(std::ostream& out, const Operation& operation);
