/// @file
/// The few Windows calls that the library uses, on Linux.
#pragma once

#include "VantryHostTypes.h"

using BOOL = int;
using HINSTANCE = struct HINSTANCE__*;

/// Calls the window's `post` on this thread. False for a null window, an empty function or one that throws.
BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Copies a text of the library's table, cut to `size` - 1 characters; returns its length, 0 for an unknown
/// id.
int LoadStringW(HINSTANCE module, UINT id, wchar_t* buffer, int size);

/// A certificate of its own over a copy of `size` bytes of DER, with one reference.
PCCERT_CONTEXT CertCreateCertificateContext(DWORD encodingType, const BYTE* encoded, DWORD size);

/// Adds a reference and returns its argument.
PCCERT_CONTEXT CertDuplicateCertificateContext(PCCERT_CONTEXT certificate);

/// Releases a reference; the last one frees the certificate.
BOOL CertFreeCertificateContext(PCCERT_CONTEXT certificate);
