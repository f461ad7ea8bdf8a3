/// @file
/// The Windows types and calls that the library uses: the system's own.
#pragma once

#include <windows.h>

#include <wincrypt.h>
