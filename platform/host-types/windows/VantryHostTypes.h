/// @file
/// The Windows types that the library's interface uses, declared as <windows.h> and <wincrypt.h> declare them
/// (with STRICT types, the default). Those headers may be included before or after, or not at all.
#pragma once

using HWND = struct HWND__*;
using CERT_CONTEXT = struct _CERT_CONTEXT;

#ifdef TAVIKVANTRYAPI_EXPORTS
#define VANTRY_API __declspec(dllexport)
#else
#define VANTRY_API __declspec(dllimport)
#endif
