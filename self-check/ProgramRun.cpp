#include "ProgramRun.h"

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <system_error>

namespace
{
struct CloseHandles
{
    void operator()(void* handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandles>;

[[noreturn]] void throwLastError(const std::string& what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

/// Goes with its handle. A pipe would stay open as long as anything that a test has started.
Handle createOutputFile()
{
    std::wstring folder(MAX_PATH + 1, L'\0');
    folder.resize(GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()));
    std::wstring name(MAX_PATH, L'\0');
    if (GetTempFileNameW(folder.c_str(), L"vsc", 0, name.data()) == 0) {
        throwLastError("GetTempFileName");
    }
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE const file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, &inherited, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        throwLastError("CreateFile");
    }
    return Handle(file);
}

/// What is in it ends with it.
Handle createJob()
{
    Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (!job || SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits,
                                        sizeof(limits)) == FALSE) {
        throwLastError("CreateJobObject");
    }
    return job;
}

/// A process in `job`, whose output goes to `output`.
Handle start(const std::filesystem::path& program, const std::wstring& argument, HANDLE job, HANDLE output)
{
    std::wstring commandLine = L"\"" + program.wstring() + L"\" " + argument;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                       nullptr, &startup, &process) == FALSE) {
        throwLastError("cannot start " + program.u8string());
    }
    const Handle thread(process.hThread);
    Handle started(process.hProcess);
    if (AssignProcessToJobObject(job, started.get()) == FALSE) {
        TerminateProcess(started.get(), EXIT_FAILURE);
        throwLastError("AssignProcessToJobObject");
    }
    ResumeThread(thread.get());
    return started;
}

std::string readFromBegin(HANDLE file)
{
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    std::string text;
    std::string part(4096, '\0');
    DWORD length = 0;
    while (ReadFile(file, part.data(), static_cast<DWORD>(part.size()), &length, nullptr) != FALSE &&
           length > 0) {
        text.append(part, 0, length);
    }
    return text;
}
} // namespace

ProgramRun runProgram(const std::filesystem::path& program, const std::wstring& argument,
                      std::chrono::seconds limit)
{
    const Handle output = createOutputFile();
    Handle job = createJob();
    const Handle process = start(program, argument, job.get(), output.get());
    const auto milliseconds = std::chrono::milliseconds(limit).count();
    const bool isInTime =
        WaitForSingleObject(process.get(), static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
    DWORD exitCode = WAIT_TIMEOUT;
    if (isInTime) {
        GetExitCodeProcess(process.get(), &exitCode);
    }
    job.reset();
    WaitForSingleObject(process.get(), INFINITE);
    return {exitCode, readFromBegin(output.get()) +
                          (isInTime ? "" : "\nended after " + std::to_string(limit.count()) + " s\n")};
}
