// The end of the host's process while an operation's thread is about to end.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace
{
using namespace std::chrono_literals;

const HANDLE threadIsEnding = CreateEventW(nullptr, TRUE, FALSE, nullptr);

/// What a thread made for itself is destroyed when it ends: this takes its time.
struct SlowEnd
{
    ~SlowEnd()
    {
        SetEvent(threadIsEnding);
        std::this_thread::sleep_for(1s);
    }
};

using ProcessEndDeathTest = VantryTest;
} // namespace

TEST_F(ProcessEndDeathTest, AProcessEndsAlsoWhileAnOperationsThreadIsEnding)
{
    const auto endTogether = [this] {
        TestWindow window;
        SetHWND(window.handle());
        log.onLine(L"::createSession entering.", [] { thread_local SlowEnd slowEnd; });
        CreateSession();
        WaitForSingleObject(threadIsEnding, INFINITE);
        std::exit(EXIT_SUCCESS);
    };
    EXPECT_EXIT(endTogether(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}
