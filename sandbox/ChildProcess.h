#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace sandbox
{

// A command that does not outlive this object, nor this process.
class ChildProcess
{
public:
    explicit ChildProcess(std::vector<std::string> command);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ChildProcess(ChildProcess&&) = delete;
    ChildProcess& operator=(ChildProcess&&) = delete;

    void signal(int number) const;

    // Nothing while the command runs; 128 + n when signal n ended it.
    std::optional<int> exitCode();

private:
    pid_t m_pid;
    std::optional<int> m_exitCode;
};

} // namespace sandbox
