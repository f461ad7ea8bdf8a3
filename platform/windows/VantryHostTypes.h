/// @file
/// The Windows types that the library's interface uses.
#pragma once

#include <windows.h>

#include <wincrypt.h>

#ifdef TAVIKVANTRYAPI_EXPORTS
#define VANTRY_API __declspec(dllexport)
#else
#define VANTRY_API __declspec(dllimport)
#endif
