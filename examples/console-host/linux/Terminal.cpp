#include "Terminal.h"

#include <termios.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <iostream>

namespace
{
/// Switches the echo off, if standard input is a terminal.
class EchoOff
{
public:
    EchoOff() : m_isTerminal(tcgetattr(STDIN_FILENO, &m_previous) == 0)
    {
        if (m_isTerminal) {
            termios silent = m_previous;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
        }
    }

    ~EchoOff()
    {
        if (m_isTerminal) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_previous);
            std::cerr << '\n';
        }
    }

    EchoOff(const EchoOff&) = delete;
    EchoOff(EchoOff&&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;
    EchoOff& operator=(EchoOff&&) = delete;

private:
    termios m_previous{};
    bool m_isTerminal;
};
} // namespace

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
    const EchoOff echoOff;
    std::string answer;
    return std::getline(std::cin, answer) ? std::optional<std::string>(answer) : std::nullopt;
}
