// The scope log by itself.
#include "LumoLogging.h"

#include "support/CapturedLog.h"

#include <gtest/gtest.h>

using log4cxx::Level;
using Texts = std::vector<std::wstring>;

namespace
{
class Logging : public testing::Test
{
protected:
    CapturedLog log;
    const log4cxx::LoggerPtr logger = log4cxx::Logger::getLogger(L"CVantryApi");
};
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
