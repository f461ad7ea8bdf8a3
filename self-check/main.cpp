/// @file
/// Runs each test of the test programs beside it in a process of its own, on the sandbox that it is started
/// under, and writes a report: vantry-sandbox -- vantry-self-check REPORT
#include "ProgramRun.h"
#include "UserRoots.h"

#include <windows.h>

#include <wincrypt.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using namespace std::chrono_literals;

struct TestProgram
{
    const wchar_t* name;
    std::chrono::seconds limit; ///< for one test
    const wchar_t* filter = L"*";
};

constexpr std::array programs{TestProgram{L"vantry-tests.exe", 120s},
                              TestProgram{L"vantry-whitebox-tests.exe", 120s},
                              TestProgram{L"vantry-c-api-tests.exe", 120s},
                              // Where a server falls silent, a test waits as long as the REST SDK does.
                              TestProgram{L"vantry-fault-tests.exe", 300s, L"-Waiting/*"},
                              TestProgram{L"vantry-unload-tests.exe", 900s}};

enum class Result
{
    passed,
    failed,
    differs, ///< from Wine, whose outcome the test expects
    notRun
};

/// Writes to the console and to the report.
class Report
{
public:
    explicit Report(const std::filesystem::path& path) : m_file(path, std::ios::binary)
    {
        if (!m_file) {
            throw std::runtime_error("cannot write " + path.u8string());
        }
    }

    void line(const std::string& text)
    {
        std::cout << text << std::endl;
        m_file << text << "\r\n" << std::flush;
    }

    /// Writes what a program has written, to the report alone.
    void quote(const std::string& output)
    {
        std::istringstream lines(output);
        for (std::string text; std::getline(lines, text);) {
            text.erase(text.find_last_not_of('\r') + 1);
            m_file << "    | " << text << "\r\n";
        }
        m_file << std::flush;
    }

private:
    std::ofstream m_file;
};

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

/// The names in what --gtest_list_tests prints: a suite a line, its tests indented below it.
std::vector<std::string> parseList(const std::string& list)
{
    std::vector<std::string> names;
    std::istringstream lines(list);
    std::string suite;
    for (std::string line; std::getline(lines, line);) {
        const auto name = line.substr(0, line.find_first_of("#\r"));
        const auto begin = name.find_first_not_of(' ');
        const auto end = name.find_last_not_of(' ') + 1;
        if (begin == 0 && name[end - 1] == '.') {
            suite = name.substr(0, end);
        } else if (begin == 2) {
            names.push_back(suite + name.substr(begin, end - begin));
        }
    }
    return names;
}

std::vector<std::string> listTests(const std::filesystem::path& program, const std::wstring& filter)
{
    const auto run = runProgram(program, L"--gtest_list_tests --gtest_filter=" + filter, 60s);
    auto names = parseList(run.output);
    if (!run.isInTime || run.exitCode != 0 || names.empty()) {
        throw std::runtime_error(program.u8string() + " lists no tests:\n" + run.output);
    }
    return names;
}

Result resultOf(const ProgramRun& run)
{
    if (!run.isInTime || run.exitCode != 0) {
        const bool isJudgedByWine = contains(run.output, "Expected is what Wine's WinHTTP gives.");
        return run.isInTime && run.exitCode == 1 && isJudgedByWine ? Result::differs : Result::failed;
    }
    if (contains(run.output, "[  SKIPPED ]")) {
        return Result::notRun;
    }
    return contains(run.output, "[  PASSED  ] 1 test.") ? Result::passed : Result::failed;
}

class SelfCheck
{
public:
    explicit SelfCheck(Report& report) : m_report(report) {}

    void run(const std::filesystem::path& folder)
    {
        for (const auto& program : programs) {
            const auto path = folder / program.name;
            for (const auto& name : listTests(path, program.filter)) {
                runTest(path, name, program.limit);
            }
        }
    }

    void summarize()
    {
        m_report.line("");
        m_report.line("Summary: " + count(Result::passed) + " tests passed, " + count(Result::failed) +
                      " failed, " + count(Result::differs) + " differ from Wine, " + count(Result::notRun) +
                      " not run");
        for (const auto& name : m_tests[Result::differs]) {
            m_report.line("Differs from Wine: " + name);
        }
    }

    bool allPassed() { return m_tests[Result::failed].empty() && !m_tests[Result::passed].empty(); }

private:
    void runTest(const std::filesystem::path& program, const std::string& name, std::chrono::seconds limit)
    {
        static const std::map<Result, std::string> words{{Result::passed, "passed   "},
                                                         {Result::failed, "FAILED   "},
                                                         {Result::differs, "differs  "},
                                                         {Result::notRun, "not run  "}};
        const auto run =
            runProgram(program, L"--gtest_filter=" + std::wstring(name.begin(), name.end()), limit);
        const auto result = resultOf(run);
        m_tests[result].push_back(name);
        m_report.line(words.at(result) + name);
        if (result != Result::passed) {
            m_report.quote(run.isInTime ? run.output : run.output + "\nended: it took too long");
        }
    }

    std::string count(Result result) { return std::to_string(m_tests[result].size()); }

    Report& m_report;
    std::map<Result, std::vector<std::string>> m_tests;
};

/// The certificate in a PEM file.
std::string readCertificate(const char* path)
{
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    const std::string pem{std::istreambuf_iterator<char>(file), {}};
    std::string der(pem.size(), '\0');
    auto size = static_cast<DWORD>(der.size());
    if (CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                             reinterpret_cast<BYTE*>(der.data()), &size, nullptr, nullptr) == FALSE) {
        throw std::runtime_error(std::string("cannot read the certificate ") + path);
    }
    der.resize(size);
    return der;
}

std::filesystem::path ownFolder()
{
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return std::filesystem::path(path).parent_path();
}

/// As it is: RtlGetVersion, and what the system says of itself to programs, differ by compatibility settings.
std::string registryText(const wchar_t* value)
{
    std::wstring text(256, L'\0');
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)", value,
                     RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS) {
        return "";
    }
    return std::filesystem::path(text.c_str()).u8string();
}

std::string wineVersion()
{
    using Function = const char*(CDECL*)();
    const auto address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
    const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    return function == nullptr ? "" : std::string(", which is Wine ") + function();
}

/// Name and version of Windows, of Wine where it is Wine, and the ANSI code page.
std::string describeSystem()
{
    return registryText(L"ProductName") + " " + registryText(L"DisplayVersion") + ", build " +
           registryText(L"CurrentBuild") + wineVersion() + "; ANSI code page " + std::to_string(GetACP());
}

bool checkSystem(Report& report)
{
    const char* const authority = std::getenv("VANTRY_SANDBOX_CA_FILE");
    if (authority == nullptr) {
        throw std::runtime_error("runs under vantry-sandbox: start self-check.cmd");
    }
    SetEnvironmentVariableW(L"VANTRY_SELF_CHECK", L"1"); // the tests leave the trusted authorities alone
    report.line("Self-check of TAVIKVANTRYAPI " SELF_CHECK_VERSION);
    report.line(describeSystem());
    report.line("");
    std::cout << "The tests need the certificate of their own server to be trusted until they have ended.\n"
                 "Windows may ask you about \"Vantry Sandbox CA\" now, and again before it is removed."
              << std::endl;
    SelfCheck check(report);
    // Its key is in the sandbox's memory alone: should it stay behind, nobody can use it.
    trustByUser(readCertificate(authority));
    check.run(ownFolder());
    const int left = removeSandboxAuthorities();
    report.line("");
    report.line("Certificates left behind: " + std::to_string(left));
    check.summarize();
    return check.allPassed() && left == 0;
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    SetConsoleOutputCP(CP_UTF8);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX); // of the tests, too: a crash asks nobody
    try {
        if (argc != 2) {
            throw std::runtime_error("usage: vantry-sandbox -- vantry-self-check REPORT");
        }
        Report report(argv[1]);
        try {
            return checkSystem(report) ? EXIT_SUCCESS : EXIT_FAILURE;
        } catch (const std::exception& error) {
            report.line(std::string("The check could not be made: ") + error.what());
            removeSandboxAuthorities();
        }
    } catch (const std::exception& error) {
        std::cerr << "vantry-self-check: " << error.what() << std::endl;
    }
    return EXIT_FAILURE;
}
