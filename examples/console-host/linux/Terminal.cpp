#include "Terminal.h"

#include <termios.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <iostream>

void prepareTerminal()
{
    std::setlocale(LC_ALL, ""); // log4cxx writes narrow text in the locale's encoding
}

std::vector<std::string> commandLineArguments(int argc, const char* const* argv)
{
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::optional<std::string> environmentVariable(const std::string& name)
{
    const char* const value = std::getenv(name.c_str());
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> askSecretly(const std::string& question)
{
    std::cerr << question << ' ' << std::flush;
    termios previous{};
    const bool isTerminal = tcgetattr(STDIN_FILENO, &previous) == 0;
    if (isTerminal) {
        termios silent = previous;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    std::string answer;
    const bool isAnswered = !std::getline(std::cin, answer).fail();
    if (isTerminal) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &previous);
        std::cerr << '\n';
    }
    return isAnswered ? std::optional<std::string>(answer) : std::nullopt;
}
