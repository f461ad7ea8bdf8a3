// The scope log and the completion guard by themselves.
#include "CompletionSignal.h"
#include "LumoLogging.h"

#include "platform/TestWindow.h"
#include "support/CapturedLog.h"

#include <gtest/gtest.h>

#include <stdexcept>

using log4cxx::Level;
using VantryIntegrationApi::SignalAsyncRequestFinishedWrapper;
using Texts = std::vector<std::wstring>;

namespace
{
class Logging : public testing::Test
{
protected:
    CapturedLog log;
    const log4cxx::LoggerPtr logger = log4cxx::Logger::getLogger(L"CVantryApi");
};

const std::wstring guard =
    L"CVantryApi VantryIntegrationApi::SignalAsyncRequestFinishedWrapper::~SignalAsyncRequestFinishedWrapper";
} // namespace

TEST_F(Logging, NestedScopesOfNarrowAndWideNamesLeaveInReverse)
{
    const std::string longName(300, 'n');
    {
        const LumoLogBlock outer(logger, "SetHWND");
        const LumoLogBlock inner(logger, L"Running r\u00E9quest");
        const LumoLogBlock innermost(logger, longName.c_str());
    }
    const std::wstring name(300, L'n');
    EXPECT_EQ(
        log.texts(),
        (Texts{L"TRACE CVantryApi SetHWND entering.", L"TRACE CVantryApi Running r\u00E9quest entering.",
               L"TRACE CVantryApi " + name + L" entering.", L"TRACE CVantryApi " + name + L" exiting.",
               L"TRACE CVantryApi Running r\u00E9quest exiting.", L"TRACE CVantryApi SetHWND exiting."}));
}

TEST_F(Logging, AScopeTestsTheLevelAgainWhenItEnds)
{
    CapturedLog::setLevel(Level::getDebug());
    {
        const LumoLogBlock block(logger, "Late");
        const LumoLogBlock wideBlock(logger, L"Late");
        CapturedLog::setLevel(Level::getTrace());
    }
    EXPECT_EQ(log.texts(), (Texts{L"TRACE CVantryApi  exiting.", L"TRACE CVantryApi  exiting."}));
    log.clear();
    {
        const LumoLogBlock block(logger, "Early");
        CapturedLog::setLevel(Level::getDebug());
    }
    EXPECT_EQ(log.texts(), (Texts{L"TRACE CVantryApi Early entering."}));
}

TEST_F(Logging, AScopeLeftByAnExceptionIsLogged)
{
    const auto fail = [this] {
        const LumoLogBlock block(logger, "Failing");
        throw std::runtime_error("x");
    };
    EXPECT_THROW(fail(), std::runtime_error);
    EXPECT_EQ(log.texts().back(), L"TRACE CVantryApi Failing exiting.");
}

TEST_F(Logging, AGuardWithoutAWindowOnlyTraces)
{
    {
        const SignalAsyncRequestFinishedWrapper signal(nullptr);
        EXPECT_TRUE(log.texts().empty());
    }
    EXPECT_EQ(log.texts(), (Texts{L"TRACE " + guard + L" entering.", L"TRACE " + guard + L" exiting."}));
}

TEST_F(Logging, AGuardPostsOnceWhenItsScopeEndsByAnException)
{
    TestWindow window;
    const auto fail = [&] {
        const SignalAsyncRequestFinishedWrapper signal(window.handle());
        EXPECT_FALSE(window.next(std::chrono::milliseconds(0)));
        throw std::runtime_error("x");
    };
    EXPECT_THROW(fail(), std::runtime_error);
    const auto message = window.next(std::chrono::seconds(5));
    ASSERT_TRUE(message);
    EXPECT_EQ(message->message, WM_ASYNC_REQUEST_FINISHED);
    EXPECT_FALSE(window.next(std::chrono::milliseconds(50)));
    EXPECT_EQ(log.texts(), (Texts{L"TRACE " + guard + L" entering.",
                                  L"INFO " + guard + L"; Sending signal async request finished.",
                                  L"TRACE " + guard + L" exiting."}));
}
