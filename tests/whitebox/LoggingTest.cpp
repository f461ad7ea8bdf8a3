// The scope log by itself.
#include "LumoLogging.h"

#include "support/CapturedLog.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

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

TEST_F(Logging, ValuesThatUnicodeKeepsOutOfTextsAreReplaced)
{
    LUMO_LINE(logger, Info, L"a\xFDD0\xFDEF\xFFFE\xFFFF z");
    LUMO_LINE(logger, Info, L"a\xFDCF\xFDF0\xFFFD z");
    EXPECT_EQ(log.texts(), (Texts{L"INFO CVantryApi a\xFFFD\xFFFD\xFFFD\xFFFD z",
                                  L"INFO CVantryApi a\xFDCF\xFDF0\xFFFD z"}));
}

TEST(Password, IsMaskedWithTheOneBeforeItInEitherCaseOfItsDigits)
{
    Lumo::hidePassword(L"first");
    Lumo::hidePassword(L"a%2Fbc%C3");
    Lumo::hidePassword(L"a%2Fb");
    Lumo::hidePassword(L"a%2Fb"); // the one before it stays
    const std::vector<std::pair<std::wstring, std::wstring>> table{
        {L"/Session?username=u&password=a%2Fb", L"/Session?username=u&password=***************"},
        {L"password=a%2fb&password=a%2fb", L"password=***************&password=***************"},
        {L"before: password=a%2Fbc%c3 after", L"before: password=*************** after"},
        {L"password=first", L"password=first"},
        {L"password=", L"password="},
        {L"a%2Fb", L"a%2Fb"}};
    for (const auto& [text, expected] : table) {
        EXPECT_EQ(Lumo::withoutPassword(text), expected);
    }
    Lumo::hidePassword(L"");
    EXPECT_EQ(Lumo::withoutPassword(L"password=a%2Fb"), L"password=***************");
}
