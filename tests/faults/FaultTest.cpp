// Runs the catalogue: whatever goes wrong, each operation ends in time with the status that its row names and
// tells the window once; no exception but the documented ones leaves it, nothing stale is left to read, the
// next call works, and no line of the log holds the password.
#include "faults/Fault.h"

#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <mutex>
#include <system_error>

using namespace std::chrono_literals;
using utility::conversions::to_string_t;

namespace
{
/// One fault, met by one operation in one way.
struct Cell
{
    const Fault* fault;
    const Operation* operation;
    bool secure;
    bool withWindow;
};

std::vector<bool> endpointsOf(const Fault& fault)
{
    return fault.endpoint == Endpoint::Both    ? std::vector{false, true}
           : fault.endpoint == Endpoint::Https ? std::vector{true}
                                               : std::vector{false};
}

bool runsInMode(const Fault& fault, bool withWindow, bool evenOperation)
{
    const bool needsWindow = fault.losesMessage || fault.leaves == Leaves::ThreadError;
    const bool needsNone = fault.withoutWindow || (fault.leaves != Leaves::Nothing && !needsWindow);
    const bool isItsTurn = !fault.costly || withWindow == evenOperation;
    return isItsTurn && (withWindow ? !needsNone : !needsWindow);
}

std::vector<Cell> cellsOf(const Fault& fault)
{
    std::vector<Cell> cells;
    bool even = false;
    for (const auto& operation : operations()) {
        even = !even;
        if (!fault.only.empty() &&
            std::find(fault.only.begin(), fault.only.end(), operation.exportName) == fault.only.end()) {
            continue;
        }
        for (const bool secure : endpointsOf(fault)) {
            for (const bool withWindow : {false, true}) {
                if (runsInMode(fault, withWindow, even)) {
                    cells.push_back({&fault, &operation, secure, withWindow});
                }
            }
        }
    }
    return cells;
}

Outcome expectedOf(const Cell& cell)
{
    const auto& fault = *cell.fault;
    auto expected = isWindows() ? fault.onWindows.value_or(fault.outcome) : fault.outcome;
    if (const auto other = fault.statusOf.find(cell.operation->exportName); other != fault.statusOf.end()) {
        expected = {other->second, L""};
    }
    if (expected.status == asUsual) {
        expected.status = cell.operation->success;
    }
    return expected;
}

/// The answer's path, as the sandbox knows the operation by.
std::string pathOf(const Operation& operation)
{
    const auto path = narrow(operation.path);
    return (operation.exportName == L"SaveAttachment" ? "/helpdesk" : "/helpdesk/rest") +
           path.substr(0, path.find('?'));
}

class FaultTest : public VantryTest
{
protected:
    FaultTest()
    {
        useHttps();
        log.onLine(L"", [this] {
            std::function<void()> action;
            {
                const std::lock_guard lock(m_mutex);
                action = m_onEveryLine;
            }
            if (action) {
                action();
            }
        });
        restore(false);
        CreateTicket({L"42", Client, L"A subject", L"A detail"});
        EXPECT_EQ(GetLastResponse().httpStatusCode, 201);
    }

    void run(const Cell& cell)
    {
        SCOPED_TRACE(narrow(cell.operation->exportName) + (cell.secure ? ", https" : ", http") +
                     (cell.withWindow ? ", with a window" : ""));
        makeResultsThatMustNotStay(*cell.operation);
        arrange(cell);
        const auto start = std::chrono::steady_clock::now();
        const auto left = startedBy(cell);
        if (cell.withWindow) {
            awaitEnd(cell);
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(cell.fault->limitMs));
        undo(*cell.fault);
        EXPECT_EQ(left, cell.fault->leaves);
        if (left == Leaves::Nothing) {
            checkOutcome(cell);
        }
        checkRequests(cell);
        checkLog(cell);
        restore(cell.secure);
        if (cell.operation->exportName == L"SaveTechNote") {
            checkNoteOfNextUpload(cell);
        }
        checkNextCall(cell);
    }

    void expectNoMoreMessages() { EXPECT_FALSE(m_window->next(50ms)) << "a message too many"; }

private:
    void call(const wchar_t* name)
    {
        const auto& next = operation(name);
        next.start();
        EXPECT_EQ(GetLastResponse().httpStatusCode, next.success)
            << narrow(next.exportName) << " in between: " << narrow(GetLastResponse().errorMessage);
    }

    void makeResultsThatMustNotStay(const Operation& operation)
    {
        const auto& name = operation.exportName;
        restore(false);
        if (name == L"SaveAttachment" || name == L"CloseSession") {
            call(L"CreateSession");
        }
        if (name == L"SaveAttachment" || name == L"SaveTechNote") {
            call(L"SaveTechNote");
        }
        if (name == L"CreateTicket" || name == L"RequestTicketList") {
            call(name.c_str());
        }
    }

    void arrange(const Cell& cell)
    {
        restore(cell.secure);
        sandbox.forgetRequests();
        const auto& fault = *cell.fault;
        if (fault.answer) {
            sandbox.plan(planned(*fault.answer, cell).to(pathOf(*cell.operation)));
        }
        if (fault.probeAnswer) {
            sandbox.plan(planned(*fault.probeAnswer, cell).to("/"));
        }
        for (const auto& fate : fault.fates) {
            auto order = web::json::value::object();
            order[_XPLATSTR("secure")] = web::json::value(cell.secure);
            order[_XPLATSTR("skip")] = web::json::value(fate.skip);
            order[to_string_t(fate.kind)] = web::json::value(to_string_t(fate.value));
            sandbox.planConnection(order);
        }
        m_asked = 0;
        if (cell.secure) {
            SetValidateCertificateCallback([this](const CERT_CONTEXT&) {
                ++m_asked;
                return true;
            });
        }
        SetHWND(cell.withWindow ? m_window->handle() : nullptr);
        log.clear();
        if (fault.host) {
            fault.host({[this](auto action) { onEveryLine(std::move(action)); }, sandbox.http, sandbox.https});
        }
    }

    Answer planned(const Script& script, const Cell& cell) const
    {
        const auto elsewhere = narrow(baseOf(cell.secure ? sandbox.http : sandbox.https)) + "/helpdesk/rest/Session";
        auto steps = script.steps;
        for (auto& step : steps) {
            boost::replace_all(step.bytes, "{status}", cell.operation->success == 201 ? "201 Created" : "200 OK");
            boost::replace_all(step.bytes, "{elsewhere}", elsewhere);
            boost::replace_all(step.bytes, "{password}", "password=" + narrow(sandbox.password));
        }
        return Answer::script(steps, script.then);
    }

    /// Calls the operation; what leaves it without being documented fails the test.
    Leaves startedBy(const Cell& cell)
    {
        const auto own = cell.fault->calls.find(cell.operation->exportName);
        try {
            own == cell.fault->calls.end() ? cell.operation->start() : own->second();
        } catch (const web::uri_exception& e) {
            EXPECT_EQ(std::string(e.what()).find(narrow(sandbox.password)), std::string::npos) << e.what();
            return Leaves::UriException;
        } catch (const web::json::json_exception&) {
            return Leaves::JsonException;
        } catch (const std::system_error&) {
            return Leaves::ThreadError;
        } catch (int) {
            return Leaves::Number;
        }
        return Leaves::Nothing;
    }

    void awaitEnd(const Cell& cell)
    {
        if (cell.fault->leaves == Leaves::ThreadError) {
            return;
        }
        if (cell.fault->losesMessage) {
            m_window->die();
        } else {
            const auto message = m_window->next(std::chrono::milliseconds(cell.fault->limitMs));
            ASSERT_TRUE(message) << "no message";
            EXPECT_EQ(message->message, WM_ASYNC_REQUEST_FINISHED);
        }
        if (m_traced) {
            ASSERT_TRUE(log.waitFor(L"~SignalAsyncRequestFinishedWrapper exiting."));
        }
        if (cell.fault->losesMessage) {
            SetHWND(nullptr);
            m_window = std::make_unique<TestWindow>();
        }
    }

    void undo(const Fault& fault)
    {
        if (fault.undo) {
            fault.undo();
        }
        onEveryLine(nullptr);
    }

    void onEveryLine(std::function<void()> action)
    {
        const std::lock_guard lock(m_mutex);
        m_onEveryLine = std::move(action);
    }

    void checkOutcome(const Cell& cell)
    {
        const auto expected = expectedOf(cell);
        const auto status = GetLastResponse();
        EXPECT_EQ(status.httpStatusCode, expected.status) << narrow(status.errorMessage);
        EXPECT_NE(status.errorMessage.find(expected.text), std::wstring::npos) << narrow(status.errorMessage);
        EXPECT_TRUE(status.httpStatusCode < 600 || !status.errorMessage.empty());
        const bool failed = expected.status != cell.operation->success;
        if (cell.operation->exportName == L"CreateTicket" && (failed || cell.fault->ticketId)) {
            EXPECT_EQ(GetCreatedTicketID(), failed ? L"" : *cell.fault->ticketId);
        }
        if (cell.operation->exportName == L"RequestTicketList" && (failed || cell.fault->tickets)) {
            EXPECT_EQ(GetTicketList().size(), failed ? 0 : *cell.fault->tickets);
        }
    }

    void checkRequests(const Cell& cell)
    {
        const auto sent = sandbox.requests();
        const bool foreign = std::any_of(sent.begin(), sent.end(),
                                         [&](const auto& request) { return request.secure != cell.secure; });
        EXPECT_FALSE(foreign && cell.fault->answer) << "sent to another server";
        if (cell.fault->withoutWindow) {
            return; // an operation of the callback's own is among them
        }
        if (expectedOf(cell).status == cell.operation->success && cell.fault->leaves == Leaves::Nothing) {
            EXPECT_EQ(sent.size(), 1U);
        } else {
            EXPECT_LE(sent.size(), cell.fault->stage == Stage::Exchange ? 1U : 0U);
        }
        const bool asksItself = cell.fault->host != nullptr;
        if (cell.secure && !asksItself) {
            EXPECT_EQ(m_asked, cell.fault->stage == Stage::Exchange ? 1 : 0);
        }
    }

    void checkLog(const Cell& cell)
    {
        for (const auto& line : log.texts()) {
            EXPECT_EQ(line.find(sandbox.password), std::wstring::npos) << narrow(line).substr(0, 1000);
            const auto password = line.find(L"password=");
            EXPECT_TRUE(password == std::wstring::npos || password + 9 == line.size() ||
                        line.compare(password + 9, Trace::mask.size(), Trace::mask) == 0)
                << narrow(line).substr(0, 1000);
        }
        if (m_traced && cell.fault->leaves == Leaves::Nothing && expectedOf(cell).status == 600) {
            EXPECT_FALSE(log.with(L"FATAL ").empty());
        }
        EXPECT_TRUE(m_traced || log.lines().empty());
    }

    /// A note that failed on its way is forgotten; one that was never sent leaves the note before it.
    void checkNoteOfNextUpload(const Cell& cell)
    {
        if (expectedOf(cell).status == cell.operation->success || cell.fault->stage != Stage::Exchange) {
            return;
        }
        sandbox.forgetRequests();
        SaveAttachment({});
        const auto target = sandbox.onlyRequest().target;
        EXPECT_EQ(target.substr(target.find("entityId=")), "entityId=");
    }

    void checkNextCall(const Cell& cell)
    {
        if (cell.operation->exportName == L"CloseSession") {
            call(L"CreateSession");
        }
        call(cell.operation->exportName.c_str());
    }

    void restore(bool secure)
    {
        sandbox.forgetPlans();
        SetHWND(nullptr);
        SetEndPoint(secure ? sandbox.https : sandbox.http);
        SetCredentials(sandbox.user, sandbox.password);
        SetValidateCertificateCallback(nullptr);
    }

    std::unique_ptr<TestWindow> m_window = std::make_unique<TestWindow>();
    std::mutex m_mutex;
    std::function<void()> m_onEveryLine;
    int m_asked = 0;

protected:
    bool m_traced = true;
};

class EveryFault : public FaultTest, public testing::WithParamInterface<const Fault*>
{};

/// Each cell waits as long as the REST SDK does: they are run all at once.
class EverySilence : public FaultTest, public testing::WithParamInterface<Cell>
{};

template <typename Item, typename Add>
std::vector<Item> collected(bool silent, const Add& add)
{
    std::vector<Item> items;
    for (const auto& section : catalogue()) {
        for (const auto& fault : section.faults) {
            if (fault.silent == silent) {
                add(items, fault);
            }
        }
    }
    return items;
}
} // namespace

TEST_P(EveryFault, IsAStatusAndNothingElse)
{
    const auto& fault = *GetParam();
    if (fault.unsanitized && isSanitized()) {
        GTEST_SKIP() << "not possible, or too much, under a sanitizer";
    }
    for (const auto& cell : cellsOf(fault)) {
        run(cell);
    }
    if (fault.aboutText) {
        m_traced = false;
        CapturedLog::setLevel(log4cxx::Level::getOff());
        for (const auto& cell : cellsOf(fault)) {
            run(cell);
        }
    }
    expectNoMoreMessages();
    if (fault.downloads) {
        const auto before = residentMemory();
        std::this_thread::sleep_for(500ms);
        EXPECT_LT(residentMemory(), before + 8 * 1024 * 1024) << "the download goes on";
    }
}

INSTANTIATE_TEST_SUITE_P(Fault, EveryFault,
                         testing::ValuesIn(collected<const Fault*>(
                             false, [](auto& items, const auto& fault) { items.push_back(&fault); })),
                         [](const auto& info) { return info.param->name; });

TEST_P(EverySilence, EndsWithAStatus)
{
    run(GetParam());
    expectNoMoreMessages();
}

INSTANTIATE_TEST_SUITE_P(Silence, EverySilence,
                         testing::ValuesIn(collected<Cell>(true,
                                                           [](auto& items, const auto& fault) {
                                                               const auto cells = cellsOf(fault);
                                                               items.insert(items.end(), cells.begin(),
                                                                            cells.end());
                                                           })),
                         [](const auto& info) {
                             return info.param.fault->name + narrow(info.param.operation->exportName) +
                                    (info.param.withWindow ? "WithAWindow" : "");
                         });

#ifdef VANTRY_FAULTS_PAGE
TEST(FaultsPage, IsUpToDate)
{
    std::ifstream file(VANTRY_FAULTS_PAGE);
    EXPECT_EQ(page(), std::string(std::istreambuf_iterator<char>(file), {}))
        << "make it anew: vantry-fault-tests --markdown > docs/faults.md";
}
#endif
