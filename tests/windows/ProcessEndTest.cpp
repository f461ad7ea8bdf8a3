// The end of the host's process while an operation's thread is still there.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <log4cxx/consoleappender.h>
#include <log4cxx/simplelayout.h>

#include <windows.h>

#include <chrono>
#include <cstdlib>
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
