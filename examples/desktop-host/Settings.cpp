#include "Settings.h"

#include <windows.h>

#include <shellapi.h>

#include <cstddef>
#include <cstdlib>
#include <map>
#include <memory>
#include <vector>

namespace
{
constexpr const char* usage =
    "vantry-desktop-host [--endpoint URL] [--user NAME] [--password PASSWORD]\n"
    "    [--client ID | --asset ID]\n\n"
    "vantry-sandbox -- vantry-desktop-host --try\n\n"
    "Others can see a password on the command line: rather set VANTRY_PASSWORD, or type it into the window.";

std::vector<std::wstring> arguments()
{
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                &LocalFree);
    return words ? std::vector<std::wstring>(words.get() + 1, words.get() + count)
                 : std::vector<std::wstring>();
}

std::wstring environment(const wchar_t* name)
{
    const wchar_t* const value = _wgetenv(name);
    return value != nullptr ? value : L"";
}

constexpr const wchar_t* registryKey = L"Software\\TAVIKVANTRYAPI\\vantry-desktop-host";

/// Leaves `text` alone if nothing is remembered.
void recall(const wchar_t* name, std::wstring& text)
{
    std::array<wchar_t, 2048> value{};
    DWORD size = sizeof value;
    if (RegGetValueW(HKEY_CURRENT_USER, registryKey, name, RRF_RT_REG_SZ, nullptr, value.data(), &size) ==
        ERROR_SUCCESS) {
        text = value.data();
    }
}

/// A registry that cannot be written is no reason to stop: the person types it again.
void remember(const wchar_t* name, DWORD type, const void* value, std::size_t size)
{
    RegSetKeyValueW(HKEY_CURRENT_USER, registryKey, name, type, value, static_cast<DWORD>(size));
}

void remember(const wchar_t* name, const std::wstring& text)
{
    remember(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

/// The sandbox tells the program that it starts where it is.
Settings sandboxSettings()
{
    Settings settings{environment(L"VANTRY_SANDBOX_HTTP"), environment(L"VANTRY_SANDBOX_USER"),
                      environment(L"VANTRY_SANDBOX_PASSWORD"), L"42"};
    settings.isTrial = true;
    if (settings.endPoint.empty()) {
        throw WrongArguments(std::string("--try is for a program that vantry-sandbox has started:\n\n") +
                             usage);
    }
    return settings;
}
} // namespace

Settings readSettings()
{
    Settings settings;
    recall(L"Endpoint", settings.endPoint);
    recall(L"User", settings.userName);
    DWORD size = sizeof settings.columnWidths;
    RegGetValueW(HKEY_CURRENT_USER, registryKey, L"ColumnWidths", RRF_RT_REG_BINARY, nullptr,
                 settings.columnWidths.data(), &size);
    settings.password = environment(L"VANTRY_PASSWORD");
    const std::map<std::wstring, std::wstring*> values{{L"--endpoint", &settings.endPoint},
                                                       {L"--user", &settings.userName},
                                                       {L"--password", &settings.password},
                                                       {L"--client", &settings.entityId},
                                                       {L"--asset", &settings.entityId}};
    const auto words = arguments();
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (*word == L"--try") {
            settings = sandboxSettings();
            continue;
        }
        const auto value = values.find(*word);
        if (value == values.end() || std::next(word) == words.end()) {
            throw WrongArguments(usage);
        }
        settings.isAsset = *word == L"--asset" || (settings.isAsset && *word != L"--client");
        *value->second = *++word;
    }
    return settings;
}

/// An endpoint may hold a password itself.
void rememberServer(const Settings& settings)
{
    if (settings.endPoint.find(L'@') == std::wstring::npos) {
        remember(L"Endpoint", settings.endPoint);
        remember(L"User", settings.userName);
    }
}

void rememberColumns(const std::array<int, 3>& widths)
{
    remember(L"ColumnWidths", REG_BINARY, widths.data(), sizeof widths);
}
