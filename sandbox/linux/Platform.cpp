#include "Platform.h"

#include <boost/process/args.hpp>
#include <boost/process/async.hpp>
#include <boost/process/exe.hpp>
#include <boost/process/extend.hpp>

#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace sandbox::platform
{
namespace
{
namespace process = boost::process;

constexpr int exitBySignal = 128;

/// Ties a command to the life of this process and keeps what is open from it.
struct Leash : process::extend::handler
{
    pid_t parent = getpid();

    template <typename Executor>
    void on_setup(Executor& executor) const
    {
        executor.cmd_style = true; // the command is looked for where the shell would
    }

    template <typename Executor>
    void on_exec_setup(Executor& /*executor*/) const
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) {
            _exit(exitBySignal + SIGKILL); // the parent died before the line above could take effect
        }
        if (close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC) != 0) {
            std::perror("vantry-sandbox: close_range");
            _exit(EXIT_FAILURE);
        }
    }
};
} // namespace

std::vector<std::string> arguments(int argc, char** argv)
{
    return {argv + 1, argv + argc};
}

void addStopSignals(boost::asio::signal_set& signals)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        signals.add(number);
    }
}

process::child start(boost::asio::io_context& context, const std::vector<std::string>& command)
{
    return process::child(
        process::exe = command.front(),
        process::args = std::vector(std::next(command.begin()), command.end()), Leash(), context,
        process::on_exit = [&context](auto&&...) { context.stop(); });
}

void signal(const process::child& command, int number)
{
    kill(command.id(), number);
}

int exitCode(const process::child& command)
{
    const int status = command.native_exit_code();
    return WIFSIGNALED(status) ? exitBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}
} // namespace sandbox::platform
