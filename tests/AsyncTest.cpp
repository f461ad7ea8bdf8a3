// Operations on a thread of their own: the message, the copies, the order.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <cstdlib>
#include <iostream>
#include <tuple>

using namespace std::chrono_literals;

namespace
{
const std::wstring guardEnd = L"~SignalAsyncRequestFinishedWrapper exiting.";

class Asynchronous : public VantryTest
{
protected:
    Asynchronous()
    {
        testing::FLAGS_gtest_death_test_style = "threadsafe"; // the library has threads
        SetHWND(window.handle());
        log.clear();
    }

    ~Asynchronous() override { EXPECT_FALSE(window.next(100ms)) << "a message too many"; }

    /// Waits for the message of the operation under way and for its thread's last line, if it logs one.
    void finish(TestWindow& expected, bool traced = true)
    {
        const auto message = expected.next(20s);
        ASSERT_TRUE(message) << "no message";
        EXPECT_EQ(message->message, 0x8100U);
        EXPECT_EQ(message->wParam, 0U);
        EXPECT_EQ(message->lParam, 0);
        if (traced) {
            ASSERT_TRUE(log.waitFor(guardEnd));
        }
    }

    TestWindow window;
};

class EveryAsynchronous : public Asynchronous, public testing::WithParamInterface<Operation>
{};
} // namespace

TEST_P(EveryAsynchronous, OneMessageFollowsTheResult)
{
    const auto& call = GetParam();
    sandbox.plan(Answer(418, R"({"a":1})").held());
    call.start();
    EXPECT_FALSE(window.next(0ms)) << "the export waited, or the message came before the answer";
    sandbox.release();
    finish(window);
    EXPECT_EQ(GetLastResponse().httpStatusCode, 418);
}

INSTANTIATE_TEST_SUITE_P(Call, EveryAsynchronous, testing::ValuesIn(operations()),
                         testing::PrintToStringParamName());

TEST_F(Asynchronous, TheWorkerLogsWhatItDoesAndAnnouncesItsEndLast)
{
    sandbox.plan(Answer(201, R"({"id":1001})"));
    operation(L"CreateTicket").start();
    finish(window);
    expectLog("asynchronous-host", log.texts(CapturedLog::Threads::caller));
    expectLog("asynchronous-worker", log.texts(CapturedLog::Threads::others));
}

/// The host overwrites its record as soon as the worker runs, before that has read anything.
TEST_F(Asynchronous, AReusedRecordArrivesAsItWas)
{
    const auto sentOf = [this](auto record, const auto& other, const std::wstring& member, const auto& call) {
        log.clear();
        sandbox.forgetRequests();
        log.onLine(L"::" + member + L" entering.", [&] { record = other; });
        call(record);
        finish(window);
        log.forgetActions();
        return sandbox.onlyRequest();
    };
    EXPECT_EQ(
        sentOf(TechNote{L"1", L"mine", 5, true}, TechNote{L"2", L"other", 6, false}, L"saveTechNote",
               SaveTechNote)
            .body,
        R"({"isHidden":false,"jobticket":{"id":"1","type":"JobTicket"},"noteText":"mine","workTime":"5"})");
    EXPECT_NE(sentOf(Attachment{"mine", L"mine.txt"}, Attachment{"other", L"other.txt"}, L"saveAttachment",
                     SaveAttachment)
                  .body.find("mine.txt\"\r\nContent-Type: null\r\nContent-Transfer-Encoding: "
                             "binary\r\n\r\nmine\r\n"),
              std::string::npos);
    EXPECT_EQ(sentOf(TicketCreationInformation{L"1", Client, L"mine", L"my text"},
                     TicketCreationInformation{L"2", Asset, L"other", L"text"}, L"createTicket", CreateTicket)
                  .body,
              R"({"clientReporter":{"id":"1","type":"Client"},"detail":"my text","subject":"mine"})");
    const auto list = [](const std::wstring& identifier) { RequestTicketList(identifier, Client); };
    EXPECT_NE(sentOf(std::wstring(L"1"), std::wstring(L"2"), L"requestTicketList", list)
                  .target.find("(clientId=1)"),
              std::string::npos);
}

namespace
{
/// A host that reads the getters while an operation is under way.
class WhileRunning : public Asynchronous
{
protected:
    using Results = std::tuple<int, std::wstring, std::wstring>; ///< code, text and ticket

    /// What is to be read when the operation logs a line that ends with one of these.
    std::vector<Results> readAt(const Operation& call, const std::vector<std::wstring>& lines)
    {
        CapturedLog::setLevel(log4cxx::Level::getInfo()); // the getters log nothing then
        std::vector<Results> read;
        for (const auto& line : lines) {
            log.onLine(line, [&read] {
                const auto& status = GetLastResponse();
                read.emplace_back(status.httpStatusCode, status.errorMessage, GetCreatedTicketID());
            });
        }
        call.start();
        finish(window, false);
        log.forgetActions();
        return read;
    }
};
} // namespace

TEST_F(WhileRunning, ATicketUnderWayHasNoOutcomeYet)
{
    const auto& call = operation(L"CreateTicket");
    sandbox.plan(Answer(201, R"({"id":7})"));
    call.start();
    finish(window);
    EXPECT_EQ(GetCreatedTicketID(), L"7");
    EXPECT_EQ(readAt(call, {call.path}),
              (std::vector<Results>{{-1, L"Internal Error: Object wasn't initialized.", L""}}));
    expectStatus(201, L"Created");
}

TEST_F(WhileRunning, AnyOtherCallLeavesTheLastOutcomeAndOnAPlainConnectionIs200WithItsTextUntilTheAnswer)
{
    sandbox.plan(Answer(404, "{}"));
    CreateSession();
    finish(window);
    const auto& call = operation(L"SaveTechNote");
    sandbox.plan(Answer(201, "{}"));
    EXPECT_EQ(readAt(call, {call.path, L"; We are sending request with method: POST"}),
              (std::vector<Results>{{404, L"Not Found", L""}, {200, L"Not Found", L""}}));
    expectStatus(201, L"Created");
}

TEST_F(Asynchronous, ACallAnnouncesItsEndToTheWindowItWasStartedWith)
{
    TestWindow other;
    CapturedLog::setLevel(log4cxx::Level::getInfo());
    log.onLine(operation(L"CreateSession").path, [&] { SetHWND(other.handle()); });
    CreateSession();
    finish(window, false);
    EXPECT_FALSE(other.next(100ms));
    CreateSession();
    finish(other, false);
}

/// The worker may still be on its way out: nothing of what it then reads may be the host's to change. What
/// fails here fails under a sanitizer.
TEST_F(Asynchronous, AtTheMessageTheHostMayChangeEverySettingAndStartTheNextCall)
{
    const auto changeEverySetting = [this](int round) {
        const auto other = std::to_wstring(round);
        SetCredentials(L"somebody " + other, L"a password that is not stored in place " + other);
        SetEndPoint(L"http://somewhere.example/a/path/that/is/not/stored/in/place/" + other);
        SetValidateCertificateCallback([other](const CERT_CONTEXT&) { return other.empty(); });
        SetHWND(nullptr);
        SetCredentials(sandbox.user, sandbox.password);
        SetEndPoint(sandbox.https);
        SetValidateCertificateCallback([other](const CERT_CONTEXT&) { return !other.empty(); });
    };
    useHttps();
    window.delaySender(2ms);
    for (int round = 0; round < 10; ++round) {
        for (const auto& call : operations()) {
            SCOPED_TRACE(narrow(call.exportName));
            SetHWND(window.handle());
            call.start();
            ASSERT_TRUE(window.next(20s)) << "no message";
            EXPECT_NE(GetLastResponse().httpStatusCode, 601);
            EXPECT_LT(GetLastResponse().httpStatusCode, 600);
            changeEverySetting(round);
        }
    }
    CreateSession();
    expectStatus(200, L"OK");
}

/// At another moment of the call each time.
TEST_F(Asynchronous, AProcessMayEndWhileACallRunsOverHttps)
{
    useHttps();
    CapturedLog::setLevel(log4cxx::Level::getOff());
    const auto endDuringCall = [](std::chrono::milliseconds time) {
        CreateSession();
        std::this_thread::sleep_for(time);
        std::exit(EXIT_SUCCESS);
    };
    const int ends = isWindows ? 5 : 20; // a process takes Wine long to start
    for (int end = 0; end < ends; ++end) {
        EXPECT_EXIT(endDuringCall(std::chrono::milliseconds(end)), testing::ExitedWithCode(EXIT_SUCCESS), "");
    }
}

/// What an operation uses is destroyed at the end of the process, but not while the operation runs.
TEST_F(Asynchronous, TheEndOfTheProcessLeavesARunningCallWhatItUses)
{
    CapturedLog::setLevel(log4cxx::Level::getOff());
    sandbox.plan(Answer(200).held());
    const auto end = [](bool whileACallRuns) {
        const auto tell = [](void*) { std::cerr << "The callback is destroyed.\n"; };
        SetValidateCertificateCallback(
            [held = std::shared_ptr<void>(nullptr, tell)](const CERT_CONTEXT&) { return held == nullptr; });
        if (whileACallRuns) {
            CreateSession();
        }
        std::exit(EXIT_SUCCESS);
    };
    EXPECT_EXIT(end(false), testing::ExitedWithCode(EXIT_SUCCESS), "The callback is destroyed.");
    EXPECT_EXIT(end(true), testing::ExitedWithCode(EXIT_SUCCESS), "^$");
}

/// An answer with a number where a text belongs: without a window the exception would reach the host.
TEST_F(Asynchronous, AnExceptionThatLeavesACallEndsTheProcessAfterTheMessage)
{
    log.onLine(L"Sending signal async request finished.", [] { std::cerr << "The window is told.\n"; });
    sandbox.plan(Answer(200, R"([{"id":1,"shortSubject":3}])"));
    const auto listAndDie = [] {
        RequestTicketList(L"42", Client);
        std::this_thread::sleep_for(20s);
        std::_Exit(0); // still alive
    };
    EXPECT_DEATH(listAndDie(), "The window is told.");
}
