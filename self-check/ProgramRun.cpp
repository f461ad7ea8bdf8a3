#include "ProgramRun.h"

#include <windows.h>

#include <future>
#include <memory>
#include <system_error>

namespace
{
struct CloseFile
{
    void operator()(void* handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseFile>;

[[noreturn]] void throwLastError(const std::string& what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

struct Pipe
{
    Handle reading;
    Handle writing;
};

/// Only the writing end goes to programs that are started.
Pipe createPipe()
{
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (CreatePipe(&reading, &writing, &inherited, 0) == FALSE) {
        throwLastError("CreatePipe");
    }
    SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
    return {Handle(reading), Handle(writing)};
}

Handle start(const std::filesystem::path& program, const std::wstring& argument, HANDLE output)
{
    std::wstring commandLine = L"\"" + program.wstring() + L"\" " + argument;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &process) == FALSE) {
        throwLastError("cannot start " + program.u8string());
    }
    CloseHandle(process.hThread);
    return Handle(process.hProcess);
}

std::string readAll(HANDLE pipe)
{
    std::string text;
    std::string part(4096, '\0');
    DWORD length = 0;
    while (ReadFile(pipe, part.data(), static_cast<DWORD>(part.size()), &length, nullptr) != FALSE) {
        text.append(part, 0, length);
    }
    return text;
}
} // namespace

ProgramRun runProgram(const std::filesystem::path& program, const std::wstring& argument,
                      std::chrono::seconds limit)
{
    Pipe pipe = createPipe();
    const Handle process = start(program, argument, pipe.writing.get());
    pipe.writing.reset(); // so that the output ends with the program
    auto output = std::async(std::launch::async, &readAll, pipe.reading.get());
    const auto milliseconds = std::chrono::milliseconds(limit).count();
    const bool isInTime =
        WaitForSingleObject(process.get(), static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
    if (!isInTime) {
        TerminateProcess(process.get(), WAIT_TIMEOUT);
        WaitForSingleObject(process.get(), INFINITE);
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return {exitCode,
            output.get() + (isInTime ? "" : "\nended after " + std::to_string(limit.count()) + " s\n")};
}
