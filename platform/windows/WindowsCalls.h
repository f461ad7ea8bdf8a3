/// @file
/// The Windows calls that the library uses: the system's own.
#pragma once

#include "VantryHostTypes.h"
