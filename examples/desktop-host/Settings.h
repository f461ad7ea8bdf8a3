#pragma once

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
};

/// The command line does not fit; `explanation` says what would.
struct WrongArguments : std::runtime_error
{
    explicit WrongArguments(std::wstring text)
        : std::runtime_error("wrong arguments"), explanation(std::move(text))
    {}
    std::wstring explanation;
};

/// Reads the process's command line.
/// @throws WrongArguments
Settings readSettings();
