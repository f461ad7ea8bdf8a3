// What a server can make an operation wait for and take in, with limits that a test can reach.
#include "ExchangeLimits.h"
#include "VantryApi.h"

#include "support/CapturedLog.h"
#include "support/Sandbox.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>

using namespace std::chrono_literals;
using VantryIntegrationApi::CVantryApi;
using VantryIntegrationApi::ExchangeLimits;

namespace
{
const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: ";

/// An answer whose body's last bytes, blanks, come one by one.
Answer slowAnswer(int bytes, int eachMs)
{
    return Answer::script(
        {{head + std::to_string(bytes + 2) + "\r\n\r\n{}"}, {" ", eachMs, static_cast<std::uint64_t>(bytes)}},
        "close");
}

class Limits : public testing::Test
{
protected:
    /// What an operation within `limits` ends with.
    ResponseStatus statusOf(const ExchangeLimits& limits, const Answer& answer)
    {
        sandbox.plan(answer);
        CVantryApi client(limits);
        client.setEndPoint(sandbox.http);
        client.setCredentials(sandbox.user, sandbox.password);
        client.wrpSaveAttachment({std::string(content, 'x'), L"file.txt"});
        return client.GetLastResponse();
    }

    void expectRefusal(const ExchangeLimits& limits, const Answer& answer, const std::wstring& text)
    {
        const auto status = statusOf(limits, answer);
        EXPECT_EQ(status.httpStatusCode, 600);
        EXPECT_NE(status.errorMessage.find(text), std::wstring::npos) << narrow(status.errorMessage);
        sandbox.forgetPlans();
    }

    Sandbox sandbox;
    std::size_t content = 10;
};
} // namespace

TEST_F(Limits, AnAnswerThatMovesHasItsTimeFromTheRequestsEndAndNoMore)
{
    ExchangeLimits limits;
    limits.answerTime = 500ms;
    limits.standstillTime = 10s;
    expectRefusal(limits, slowAnswer(1000, 50), L"takes longer than");
    limits.answerTime = 20s;
    EXPECT_EQ(statusOf(limits, slowAnswer(20, 50)).httpStatusCode, 200);
}

/// The server reads nothing for longer than its answer may take.
TEST_F(Limits, AnAnswersTimeBeginsWithTheEndOfAnUploadThatStoodStill)
{
    ExchangeLimits limits;
    limits.answerTime = 2s;
    content = 30'000'000; // more than the system takes on the server's behalf
    sandbox.planConnection({{"held", true}, {"secure", false}});
    const auto released = std::async(std::launch::async, [this] {
        std::this_thread::sleep_for(2500ms);
        sandbox.release();
    });
    EXPECT_EQ(statusOf(limits, slowAnswer(5, 50)).httpStatusCode, 200);
}

TEST_F(Limits, AServerThatStandsStillIsWaitedForSoLongAndOneThatMovesForever)
{
    ExchangeLimits limits;
    limits.standstillTime = 4s;
    const std::wstring text = L"neither taken nor sent";
    expectRefusal(limits, Answer::script({{""}}, "stay"), text);
    expectRefusal(limits, Answer::script({{"HTTP/1.1 200 OK\r\nContent-Ty"}}, "stay"), text);
    expectRefusal(limits, Answer::script({{"HTTP/1.1 200 OK\r\nX-Slow: "}, {"x", 50, 0}}, "close"), text);
    expectRefusal(limits, Answer::script({{head + "10\r\n\r\n{"}}, "stay"), text);
    EXPECT_EQ(statusOf(limits, slowAnswer(100, 50)).httpStatusCode, 200);
}

TEST_F(Limits, AnAnswersBodyHasABoundAndAnUploadHasNone)
{
    ExchangeLimits limits;
    limits.bodySize = 1000;
    content = 1'000'000;
    expectRefusal(limits, Answer(200, "{}" + std::string(2000, ' ')), L"is longer than");
    EXPECT_EQ(statusOf(limits, Answer(201, "{}" + std::string(900, ' '))).httpStatusCode, 201);
}
