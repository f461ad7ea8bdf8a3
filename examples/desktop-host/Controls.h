#pragma once

#include <windows.h>

#include <string>

/// The text of a control, by its number.
std::wstring controlText(HWND parent, int id);

void enableControl(HWND parent, int id, bool isEnabled);
bool isControlEnabled(HWND parent, int id);

/// Throws what the failed call has left in `GetLastError`.
[[noreturn]] void throwLastError(const char* call);
