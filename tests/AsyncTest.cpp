// Operations on a thread of their own: the message, the copies, the order.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <cstdlib>
#include <future>
#include <iostream>

using namespace std::chrono_literals;

namespace
{
const std::wstring guardEnd = L"~SignalAsyncRequestFinishedWrapper exiting.";

class Asynchronous : public VantryTest
{
protected:
    Asynchronous()
    {
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

INSTANTIATE_TEST_SUITE_P(Call, EveryAsynchronous, testing::ValuesIn(operations()), nameOfParameter);

TEST_F(Asynchronous, TheWorkerLogsWhatItDoesAndAnnouncesItsEndLast)
{
    sandbox.plan(Answer(201, R"({"id":1001})"));
    operation(L"CreateTicket").start();
    finish(window);
    expectLog("asynchronous-host", log.texts(CapturedLog::Threads::caller));
    expectLog("asynchronous-worker", log.texts(CapturedLog::Threads::others));
}

namespace
{
/// The host's record is overwritten as soon as the worker runs, before it has read anything.
class ReusedRecord : public Asynchronous
{
protected:
    /// What arrives of a call with `record`.
    template <typename Record>
    Request sentOf(Record record, const Record& other, const std::wstring& member,
                   const std::function<void(const Record&)>& call)
    {
        log.clear();
        sandbox.forgetRequests();
        log.onLine(L"::" + member + L" entering.", [&] { record = other; });
        call(record);
        finish(window);
        return sandbox.onlyRequest();
    }
};
} // namespace

TEST_F(ReusedRecord, ArrivesAsItWas)
{
    EXPECT_EQ(
        sentOf<TechNote>({L"1", L"mine", 5, true}, {L"2", L"other", 6, false}, L"saveTechNote", SaveTechNote)
            .body,
        R"({"isHidden":false,"jobticket":{"id":"1","type":"JobTicket"},"noteText":"mine","workTime":"5"})");
    EXPECT_NE(
        sentOf<Attachment>({"mine", L"mine.txt"}, {"other", L"other.txt"}, L"saveAttachment", SaveAttachment)
            .body.find("mine.txt\"\r\nContent-Type: null\r\nContent-Transfer-Encoding: "
                       "binary\r\n\r\nmine\r\n"),
        std::string::npos);
    EXPECT_EQ(sentOf<TicketCreationInformation>({L"1", Client, L"mine", L"my text"},
                                                {L"2", Asset, L"other", L"text"}, L"createTicket",
                                                CreateTicket)
                  .body,
              R"({"clientReporter":{"id":"1","type":"Client"},"detail":"my text","subject":"mine"})");
    const auto list = [](const std::wstring& identifier) { RequestTicketList(identifier, Client); };
    EXPECT_NE(sentOf<std::wstring>(L"1", L"2", L"requestTicketList", list).target.find("(clientId=1)"),
              std::string::npos);
}

namespace
{
/// Holds the worker at a line of info level while the host reads the getters, which log nothing then.
class WhileRunning : public Asynchronous
{
protected:
    void start(const Operation& call, const std::wstring& heldAt)
    {
        CapturedLog::setLevel(log4cxx::Level::getInfo());
        log.onLine(heldAt, [this] {
            reached.set_value();
            released.get_future().wait();
        });
        call.start();
        reached.get_future().wait();
    }

    void finishHeld()
    {
        released.set_value();
        finish(window, false);
    }

    std::promise<void> reached;
    std::promise<void> released;
};
} // namespace

TEST_F(WhileRunning, ATicketUnderWayHasNoOutcomeYet)
{
    sandbox.plan(Answer(201, R"({"id":7})"));
    operation(L"CreateTicket").start();
    finish(window);
    EXPECT_EQ(GetCreatedTicketID(), L"7");
    start(operation(L"CreateTicket"), operation(L"CreateTicket").path);
    expectStatus(-1, L"Internal Error: Object wasn't initialized.");
    EXPECT_EQ(GetCreatedTicketID(), L"");
    finishHeld();
    expectStatus(201, L"Created");
}

TEST_F(WhileRunning, AnyOtherCallUnderWayLeavesTheLastOutcome)
{
    sandbox.plan(Answer(418, "{}"));
    CreateSession();
    finish(window);
    start(operation(L"SaveTechNote"), operation(L"SaveTechNote").path);
    EXPECT_EQ(GetLastResponse().httpStatusCode, 418);
    finishHeld();
    EXPECT_NE(GetLastResponse().httpStatusCode, 418);
}

TEST_F(WhileRunning, APlainConnectionCountsAs200WithTheOldTextUntilTheAnswerComes)
{
    sandbox.plan(Answer(404, "{}"));
    CreateSession();
    finish(window);
    const auto text = GetLastResponse().errorMessage;
    EXPECT_EQ(text, L"Not Found");
    start(operation(L"SaveTechNote"), L"; We are sending request with method: POST");
    expectStatus(200, text);
    finishHeld();
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

namespace
{
/// A host that uses all that it may as soon as the message has come.
void changeEverySetting(const Sandbox& sandbox, int round)
{
    const auto other = std::to_wstring(round);
    SetCredentials(L"somebody " + other, L"a password that is not stored in place " + other);
    SetEndPoint(L"http://somewhere.example/a/path/that/is/not/stored/in/place/" + other);
    SetValidateCertificateCallback([other](const CERT_CONTEXT&) { return other.empty(); });
    SetHWND(nullptr);
    SetCredentials(sandbox.user, sandbox.password);
    SetEndPoint(sandbox.https);
    SetValidateCertificateCallback([other](const CERT_CONTEXT&) { return !other.empty(); });
}
} // namespace

/// The worker may still be on its way out: nothing of what it then reads may be the host's to change. What
/// fails here fails under a sanitizer.
TEST_F(Asynchronous, AtTheMessageTheHostMayChangeEverySettingAndStartTheNextCall)
{
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
            changeEverySetting(sandbox, round);
        }
    }
    CreateSession();
    expectStatus(200, L"OK");
}

/// At another moment of the call each time.
TEST_F(Asynchronous, AProcessMayEndWhileACallRunsOverHttps)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
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
    testing::FLAGS_gtest_death_test_style = "threadsafe";
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
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    log.onLine(L"Sending signal async request finished.", [] { std::cerr << "The window is told.\n"; });
    sandbox.plan(Answer(200, R"([{"id":1,"shortSubject":3}])"));
    const auto listAndDie = [] {
        RequestTicketList(L"42", Client);
        std::this_thread::sleep_for(20s);
        std::_Exit(0); // still alive
    };
    EXPECT_DEATH(listAndDie(), "The window is told.");
}
