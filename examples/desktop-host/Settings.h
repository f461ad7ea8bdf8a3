#pragma once

#include <array>
#include <stdexcept>
#include <string>

/// What the window's fields hold at the start.
struct Settings
{
    std::wstring endPoint = L"https://";
    std::wstring userName;
    std::wstring password;
    std::wstring entityId;
    bool isAsset = false;
    bool isTrial = false; ///< on the sandbox: nothing is remembered
    std::array<int, 3> columnWidths{70, 230, 120};
};

/// The command line does not fit; the text says what would.
struct WrongArguments : std::invalid_argument
{
    using std::invalid_argument::invalid_argument;
};

/// Reads what the user's last sessions have left, and the process's command line.
/// @throws WrongArguments
Settings readSettings();

/// Keeps endpoint and user for the next start, in the user's part of the registry; never a password.
void rememberServer(const Settings& settings);

/// Keeps the widths of the list's columns.
void rememberColumns(const std::array<int, 3>& widths);
