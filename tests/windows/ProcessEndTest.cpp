// The end of the host's process while a thread is still there.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <log4cxx/consoleappender.h>
#include <log4cxx/simplelayout.h>

#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

namespace
{
using namespace std::chrono_literals;

const HANDLE threadIsThere = CreateEventW(nullptr, TRUE, FALSE, nullptr);

/// What a thread made for itself is destroyed when it ends: this takes its time.
struct SlowEnd
{
    ~SlowEnd()
    {
        SetEvent(threadIsThere);
        std::this_thread::sleep_for(1s);
    }
};

/// Never comes back to an operation's thread. Appenders are locked while they write and when they are closed.
class StuckAppender : public log4cxx::ConsoleAppender
{
public:
    StuckAppender() : ConsoleAppender(std::make_shared<log4cxx::SimpleLayout>()) {}

protected:
    void append(const log4cxx::spi::LoggingEventPtr& /*event*/, log4cxx::helpers::Pool& /*pool*/) override
    {
        if (std::this_thread::get_id() != m_host) {
            SetEvent(threadIsThere);
            Sleep(INFINITE);
        }
    }

private:
    std::thread::id m_host = std::this_thread::get_id();
};

/// Where `module` has the address of the imported function `name`.
FARPROC* findImport(HMODULE module, const std::string& name)
{
    auto* const base = reinterpret_cast<unsigned char*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; library->Name != 0; ++library) {
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* address = reinterpret_cast<FARPROC*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++address) {
            const auto* const import =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (!IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal) && name == import->Name) {
                return address;
            }
        }
    }
    throw std::runtime_error("no import " + name);
}

/// In the place of pthread_key_create() in the run-time: its thread stays there, with the run-time's lock.
INT_PTR WINAPI stayForEver()
{
    SetEvent(threadIsThere);
    Sleep(INFINITE);
    return EXIT_FAILURE;
}

void replaceImport(const wchar_t* module, const std::string& name, FARPROC function)
{
    auto* const address = findImport(GetModuleHandleW(module), name);
    DWORD protection = 0;
    ASSERT_NE(VirtualProtect(address, sizeof(*address), PAGE_READWRITE, &protection), FALSE);
    *address = function;
}

class ProcessEndDeathTest : public VantryTest
{
protected:
    ProcessEndDeathTest() { SetHWND(window.handle()); }

    static void endWithTheThread()
    {
        CreateSession();
        WaitForSingleObject(threadIsThere, INFINITE);
        std::exit(EXIT_SUCCESS);
    }

    TestWindow window;
};
} // namespace

TEST_F(ProcessEndDeathTest, AProcessEndsWhileAnOperationsThreadEnds)
{
    log.onLine(L"::createSession entering.", [] { thread_local SlowEnd slowEnd; });
    EXPECT_EXIT(endWithTheThread(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(ProcessEndDeathTest, AProcessEndsWhileAnOperationsThreadWritesALine)
{
    CapturedLog::setLevel(
        log4cxx::Level::getInfo()); // the host itself writes nothing once the thread is there
    log4cxx::Logger::getLogger(L"CVantryApi")->addAppender(std::make_shared<StuckAppender>());
    EXPECT_EXIT(endWithTheThread(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(ProcessEndDeathTest, AProcessEndsWhileAThreadPreparesWhatExceptionsNeed)
{
    const auto endWhileAnExceptionIsThrown = [] {
        replaceImport(L"libgcc_s_seh-1.dll", "pthread_key_create", &stayForEver);
        const auto throwOne = [](PTP_CALLBACK_INSTANCE /*instance*/, PVOID /*context*/) {
            try {
                throw std::runtime_error("");
            } catch (const std::runtime_error&) {
                SetEvent(threadIsThere);
            }
        };
        TrySubmitThreadpoolCallback(throwOne, nullptr, nullptr);
        WaitForSingleObject(threadIsThere, INFINITE);
        std::exit(EXIT_SUCCESS);
    };
    EXPECT_EXIT(endWhileAnExceptionIsThrown(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}
