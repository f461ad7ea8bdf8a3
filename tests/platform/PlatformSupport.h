/// @file
/// What the tests need of the platform, besides a window.
#pragma once

#include <cstddef>
#include <map>
#include <string>

/// Makes this process trust the sandbox's certificate authority. Call it before the first TLS connection.
void trustAuthority(const std::string& pemFile, const std::string& der);

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

struct Shortage
{
    void (*begin)();
    void (*end)();
};

/// Shortages of resources that a test can bring about here, by the names in the catalogue of faults.
const std::map<std::string, Shortage>& shortages();

/// `text` in the calling thread's ANSI code page.
std::string inThreadCodePage(const std::wstring& text);
