/// @file
/// What a report says of the system that it was made on.
#pragma once

#include <string>

/// Name and version of Windows, of Wine where it is Wine, and the ANSI code page.
std::string describeSystem();
