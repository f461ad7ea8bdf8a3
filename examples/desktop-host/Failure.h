#pragma once

#include <windows.h>

#include "TAVIKVANTRYAPI.h"

#include <exception>
#include <string>

/// The status of an operation that was not started: that of a `ResponseStatus` without an outcome.
constexpr std::int32_t notStarted = -1;

/// What a failure means and what to do next, in words for a person.
std::wstring explain(const ResponseStatus& response, bool hasSession);

/// The text of an exception.
std::wstring describe(const std::exception& error);

/// Tells the person; returns when it has been read.
void tellFailure(HWND owner, const std::wstring& text);
