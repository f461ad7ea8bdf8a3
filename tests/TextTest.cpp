// Wide text that is no text.
#include "support/VantryTest.h"

using namespace Trace;

namespace
{
class MalformedText : public VantryTest, public testing::WithParamInterface<std::wstring>
{
protected:
    MalformedText() { log.clear(); }

    void expectRefused(const Operation& call, const std::function<void()>& start)
    {
        SCOPED_TRACE(narrow(call.exportName));
        log.clear();
        start();
        const auto fatals = log.with(L"FATAL ");
        const auto& status = GetLastResponse();
        EXPECT_EQ(status.httpStatusCode, 600);
        EXPECT_FALSE(status.errorMessage.empty());
        EXPECT_TRUE(
            same({fatal(api + call.member + L"; Exception happened: " + status.errorMessage)}, fatals));
        EXPECT_TRUE(sandbox.requests().empty());
    }

    void expectFailedInTheExchange(const std::function<void()>& start)
    {
        log.clear();
        start();
        const auto fatals = log.with(L"FATAL ");
        expectStatus(600, requestFailedText);
        EXPECT_TRUE(same({fatal(utils + L"safe_CallMethod; std::exception happened: \u2026")}, fatals));
        EXPECT_TRUE(sandbox.requests().empty());
    }
};
} // namespace

TEST_P(MalformedText, InACredentialStopsTheCallsThatSendIt)
{
    for (const bool inName : {true, false}) {
        SetCredentials(inName ? GetParam() : L"user", inName ? L"word" : GetParam());
        for (const auto& call : operations()) {
            if (call.path.find(L"username=") != std::wstring::npos) {
                expectRefused(call, call.start);
            }
        }
    }
}

TEST_P(MalformedText, InACredentialDoesNotStopTheCallsThatDoNotSendIt)
{
    SetCredentials(L"user", GetParam());
    CloseSession();
    EXPECT_EQ(sandbox.requests().size(), 1U);
    SaveAttachment({});
    EXPECT_EQ(sandbox.requests().size(), 2U);
    SetCredentials(GetParam(), L"word");
    CloseSession();
    EXPECT_EQ(sandbox.requests().size(), 3U);
}

TEST_P(MalformedText, InARecordStopsTheCall)
{
    const auto& text = GetParam();
    for (const auto& note : {TechNote{text, L"x", 1, true}, TechNote{L"1", text, 1, true}}) {
        expectRefused(operation(L"SaveTechNote"), [&] { SaveTechNote(note); });
    }
    for (const auto& ticket : {TicketCreationInformation{text, Client, L"x", L"x"},
                               TicketCreationInformation{text, Asset, L"x", L"x"},
                               TicketCreationInformation{L"1", Client, text, L"x"},
                               TicketCreationInformation{L"1", Client, L"x", text}}) {
        expectRefused(operation(L"CreateTicket"), [&] { CreateTicket(ticket); });
    }
    expectRefused(operation(L"RequestTicketList"), [&] { RequestTicketList(text, Client); });
}

TEST_P(MalformedText, InAFileNameOrTheUploadsCookieFailsInTheExchange)
{
    expectFailedInTheExchange([] { SaveAttachment({"x", GetParam()}); });
    SetCredentials(GetParam(), L"word");
    expectFailedInTheExchange([] { SaveAttachment({"x", L"x"}); });
}

TEST_P(MalformedText, InTheEndpointStopsEveryCall)
{
    for (const auto& endPoint : {L"http://localhost/" + GetParam(), std::wstring(L"http://a b/")}) {
        SetEndPoint(endPoint);
        for (const auto& call : operations()) {
            expectRefused(call, call.start);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Fault, MalformedText, testing::ValuesIn(malformedTexts()),
                         [](const auto& info) { return std::to_string(info.index); });

TEST_F(VantryTest, MalformedCredentialsAreNotLookedAtWhenInfoIsOff)
{
    CapturedLog::setLevel(log4cxx::Level::getWarn());
    SetCredentials(malformedTexts().front(), L"word");
    CloseSession();
    EXPECT_EQ(sandbox.requests().size(), 1U);
    EXPECT_TRUE(log.with(L"FATAL").empty());
}
