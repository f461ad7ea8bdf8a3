#pragma once

#include <windows.h>

#include <shellapi.h>

#include "TAVIKVANTRYAPI.h"

#include <deque>
#include <filesystem>

/// Lets the person choose files; none if the person does not want to.
std::deque<std::filesystem::path> chooseFiles(HWND owner);

/// The files that were dropped on the window; takes the handle over.
std::deque<std::filesystem::path> droppedFiles(HDROP drop);

/// Reads a file whole, as the library wants it.
/// @throws std::runtime_error or std::filesystem::filesystem_error if it cannot be read or is too large
Attachment readFile(const std::filesystem::path& path);
