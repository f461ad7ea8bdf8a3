#include "Terminal.h"
#include "Text.h"

#include <windows.h>

#include <shellapi.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <iostream>
#include <memory>
#include <system_error>

namespace
{
/// Reads a line of the console as UTF-16: the C runtime would hand over the console's code page.
std::optional<std::string> readConsoleLine(HANDLE console)
{
    std::array<wchar_t, 512> line{};
    DWORD length = 0;
    if (ReadConsoleW(console, line.data(), static_cast<DWORD>(line.size()), &length, nullptr) == FALSE ||
        length == 0) {
        return std::nullopt;
    }
    const std::wstring text(line.data(), length);
    return toUtf8(text.substr(0, text.find_first_of(L"\r\n")));
}
} // namespace

void prepareTerminal()
{
    static const UINT previousEncoding = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] {
        std::fflush(stdout);
        SetConsoleOutputCP(previousEncoding);
    });
    // Whole characters reach the console only in whole writes; every line ends with a flush.
    std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
}

std::vector<std::string> commandLineArguments(int /*argc*/, const char* const* /*argv*/)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                &LocalFree);
    if (!words) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "the command line");
    }
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(toUtf8(words.get()[i]));
    }
    return arguments;
}

std::optional<std::string> environmentVariable(const std::string& name)
{
    const wchar_t* const value = _wgetenv(toWide(name).c_str());
    return value != nullptr ? std::optional<std::string>(toUtf8(value)) : std::nullopt;
}

std::optional<std::string> askSecretly(const std::string& question)
{
    std::cerr << question << ' ' << std::flush;
    HANDLE const input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD previousMode = 0;
    if (GetConsoleMode(input, &previousMode) == FALSE) { // a file or a pipe
        std::string answer;
        return std::getline(std::cin, answer) ? std::optional<std::string>(answer) : std::nullopt;
    }
    SetConsoleMode(input, previousMode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
    auto answer = readConsoleLine(input);
    SetConsoleMode(input, previousMode);
    std::cerr << '\n';
    return answer;
}
