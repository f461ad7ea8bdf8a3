#include "Platform.h"

#include <boost/asio/windows/object_handle.hpp>
#include <boost/process/extend.hpp>

#include <windows.h>

#include <shellapi.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <system_error>

namespace sandbox::platform
{
namespace
{
namespace process = boost::process;

void require(bool succeeded, const char* what)
{
    if (!succeeded) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
    }
}

/// A job whose processes end with this one: its only handle is closed by the system then.
HANDLE createJob()
{
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_SILENT_BREAKAWAY_OK;
    require(job != nullptr &&
                SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits) != 0,
            "cannot create a job");
    return job;
}

/// What stands behind "--" on the command line, as it stands there: programs differ in how they read quotes.
std::wstring givenCommand()
{
    const std::wstring separator = L" -- ";
    const std::wstring line = GetCommandLineW();
    return line.substr(line.find(separator) + separator.size());
}

/// Starts the given command and ties it to the life of this process.
struct Leash : process::extend::handler
{
    std::wstring command = givenCommand();

    template <typename Executor>
    void on_setup(Executor& executor) const
    {
        executor.cmd_line = command.c_str();
    }

    template <typename Executor>
    void on_success(Executor& executor) const
    {
        static const HANDLE job = createJob();
        require(AssignProcessToJobObject(job, executor.proc_info.hProcess) != 0, "cannot use a job");
    }
};

/// The console ends a process as soon as the last handler of its closing has returned. So this one waits
/// for the process to end by itself.
BOOL WINAPI endInGoodOrder(DWORD event)
{
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
        return FALSE; // these are signals for the runtime
    }
    std::raise(SIGBREAK);
    Sleep(INFINITE);
    return TRUE;
}
} // namespace

std::vector<std::string> arguments(int /*argc*/, char** /*argv*/)
{
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                              LocalFree);
    require(words != nullptr, "cannot read the command line");
    std::vector<std::string> list;
    for (int i = 1; i < count; ++i) {
        list.push_back(std::filesystem::path(words.get()[i]).u8string());
    }
    return list;
}

void addStopSignals(boost::asio::signal_set& signals)
{
    for (const int number : {SIGINT, SIGTERM, SIGBREAK}) {
        signals.add(number);
    }
    require(SetConsoleCtrlHandler(endInGoodOrder, TRUE) != 0, "cannot await the console's end");
}

process::child start(boost::asio::io_context& context, const std::vector<std::string>& /*command*/)
{
    process::child command((Leash()));
    HANDLE own = nullptr;
    require(DuplicateHandle(GetCurrentProcess(), command.native_handle(), GetCurrentProcess(), &own,
                            SYNCHRONIZE, FALSE, 0) != 0,
            "cannot await the command's end");
    const auto ended = std::make_shared<boost::asio::windows::object_handle>(context, own);
    ended->async_wait([ended, &context](boost::system::error_code) { context.stop(); });
    return command;
}

void signal(const process::child& /*command*/, int /*number*/) {}

int exitCode(const process::child& command)
{
    return command.native_exit_code();
}
} // namespace sandbox::platform
