/// @file
/// What the tests need of the platform, besides a window.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Makes this process trust the sandbox's certificate authority. Call it before the first TLS connection.
void trustAuthority(const std::string& pemFile, const std::string& der);

/// Whether the authority is trusted throughout: tests that need it untrusted cannot run then.
bool authorityStaysTrusted();

constexpr bool isWindows = VANTRY_WINDOWS;

/// Whether a sanitizer runs along.
constexpr bool isSanitized = VANTRY_SANITIZED;

/// Memory of this process that is in use, in bytes.
std::size_t residentMemory();

/// The most memory of this process that has been in use at a time, in bytes.
std::size_t peakMemory();

/// From now on the system itself would speak every version of TLS, with every cipher: what is refused is
/// refused by the library.
void allowOldTls();

std::size_t countThreads();

/// Handles, or descriptors.
std::size_t countHandles();

/// `text` in the calling thread's ANSI code page.
std::string inThreadCodePage(const std::wstring& text);
