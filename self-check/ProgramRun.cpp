#include "ProgramRun.h"

#include <windows.h>

#include <boost/process/child.hpp>
#include <boost/process/cmd.hpp>
#include <boost/process/group.hpp>
#include <boost/process/io.hpp>

#include <array>
#include <cstdio>
#include <memory>
#include <system_error>

namespace process = boost::process;

namespace
{
using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A file that is deleted when it is closed. Not a pipe, whose end would not come as long as anything that a
/// test has started is still running.
File createOutputFile()
{
    static int number = 0; // another name each time: the file before may not be gone yet
    const auto path =
        std::filesystem::temp_directory_path() /
        ("vantry-self-check-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++number));
    File file(_wfopen(path.c_str(), L"w+bTD"), &std::fclose);
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "cannot write " + path.u8string());
    }
    return file;
}

std::string readFromBegin(std::FILE* file)
{
    std::string text;
    std::array<char, 4096> part{};
    std::rewind(file);
    while (const auto length = std::fread(part.data(), 1, part.size(), file)) {
        text.append(part.data(), length);
    }
    return text;
}
} // namespace

ProgramRun runProgram(const std::filesystem::path& program, const std::wstring& argument,
                      std::chrono::seconds limit)
{
    const auto output = createOutputFile();
    process::group group; // with all that the program starts
    process::child child(process::cmd = L'"' + program.wstring() + L"\" " + argument,
                         (process::std_out & process::std_err) > output.get(), group);
    const bool isInTime = child.wait_for(limit);
    group.terminate();
    child.wait();
    return {isInTime, child.exit_code(), readFromBegin(output.get())};
}
