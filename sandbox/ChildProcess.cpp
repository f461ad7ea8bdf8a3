#include "ChildProcess.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

namespace sandbox
{

namespace
{

constexpr int exitNotFound = 127;
constexpr int exitNotExecutable = 126;
constexpr int exitBySignal = 128;

[[noreturn]] void execute(std::vector<std::string>& command, pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(exitBySignal + SIGKILL); // the parent died before the line above could take effect
    }
    std::signal(SIGPIPE, SIG_DFL); // ignored signals stay ignored in the new program
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    const int reason = errno;
    std::perror(command.front().c_str());
    _exit(reason == ENOENT ? exitNotFound : exitNotExecutable);
}

int toExitCode(int status)
{
    return WIFSIGNALED(status) ? exitBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> command)
{
    const pid_t parent = getpid();
    m_pid = fork();
    if (m_pid < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start the command");
    }
    if (m_pid == 0) {
        execute(command, parent);
    }
}

ChildProcess::~ChildProcess()
{
    if (!m_exitCode) {
        signal(SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

void ChildProcess::signal(int number) const
{
    if (!m_exitCode) {
        kill(m_pid, number);
    }
}

std::optional<int> ChildProcess::exitCode()
{
    int status = 0;
    if (!m_exitCode && waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_exitCode = toExitCode(status);
    }
    return m_exitCode;
}

} // namespace sandbox
