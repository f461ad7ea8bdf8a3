#pragma once

#include <windows.h>

#include <string>

/// A visible child window with the number `id`.
/// @throws std::system_error
HWND createControl(HWND parent, const wchar_t* className, const wchar_t* text, int id, DWORD style,
                   DWORD extendedStyle = 0);

/// The text of a control, by its number.
std::wstring controlText(HWND parent, int id);

void enableControl(HWND parent, int id, bool isEnabled);
bool isControlEnabled(HWND parent, int id);

/// Throws what the failed call has left in `GetLastError`.
[[noreturn]] void throwLastError(const char* call);
