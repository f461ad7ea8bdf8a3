// Runs the catalogue: whatever goes wrong, an operation ends in time with the status that its row names and
// tells the window once; no exception but the documented ones leaves it, nothing stale is left to read, the
// next call works, and no line of the log holds the password.
#include "faults/Fault.h"
#include "faults/HostFaults.h"

#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/range/algorithm_ext/erase.hpp>
#include <cpprest/base_uri.h>
#include <cpprest/json.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <system_error>

using namespace std::chrono_literals;

namespace
{
constexpr std::size_t mebibyte = 1024UL * 1024;

/// Whether its test does little but wait: these tests run all at once.
bool waits(const Fault& fault)
{
    return fault.is("silent") || fault.is("waits");
}

std::chrono::seconds limitOf(const Fault& fault)
{
    if (isWindows && fault.is("slowOnWindows")) {
        return 240s; // the library's own 3 minutes: Wine's stack waits for ever
    }
    // Where the HTTP stack does not wait, less than the 30 s that it waits for.
    return fault.is("costly") ? 150s : waits(fault) ? 60s : 25s;
}

/// One way in which the fault is met.
struct Cell
{
    const Operation& operation;
    bool secure;
    bool withWindow;
};

std::vector<const Operation*> operationsOf(const Fault& fault)
{
    std::vector<const Operation*> met;
    for (const auto& operation : operations()) {
        if (fault.only.empty() ||
            std::find(fault.only.begin(), fault.only.end(), operation.exportName) != fault.only.end()) {
            met.push_back(&operation);
        }
    }
    if (waits(fault) || fault.isShared()) {
        met = {met[fault.number % met.size()]};
    }
    return met;
}

bool runsInMode(const Fault& fault, const Operation& operation, bool withWindow)
{
    const bool needsWindow = fault.is("losesWindow") || fault.leaves == "std::system_error";
    const bool needsNone = fault.is("withoutWindow") || (!fault.leaves.empty() && !needsWindow);
    const bool takesTurns = fault.is("costly") || waits(fault);
    const auto turn =
        static_cast<std::size_t>(&operation - operations().data()) + fault.number / operations().size();
    const bool isItsTurn = !takesTurns || withWindow == (turn % 2 == 0);
    return isItsTurn && (withWindow ? !needsNone : !needsWindow);
}

/// The endpoint with 65,536 added to its port.
std::wstring withPortBeyond(std::wstring endPoint)
{
    const auto port = endPoint.rfind(L':') + 1;
    const auto digits = endPoint.find(L'/', port) - port;
    return endPoint.replace(port, digits, std::to_wstring(std::stoi(endPoint.substr(port, digits)) + 65536));
}

/// The path of the operation's request.
std::string pathOf(const Operation& operation)
{
    const auto path = narrow(operation.path);
    return (operation.exportName == L"SaveAttachment" ? "/helpdesk" : "/helpdesk/rest") +
           path.substr(0, path.find('?'));
}

class EveryFault : public VantryTest, public testing::WithParamInterface<const Fault*>
{
protected:
    const Fault& fault = *GetParam();

    EveryFault()
    {
        allowOldTls();
        useHttps();
        restore(false);
        CreateTicket({L"42", Client, L"A subject", L"A detail"});
        EXPECT_EQ(GetLastResponse().httpStatusCode, 201);
    }

    void runAll(const log4cxx::LevelPtr& level)
    {
        CapturedLog::setLevel(level);
        m_traced = level == log4cxx::Level::getTrace();
        for (const auto* operation : operationsOf(fault)) {
            for (const bool secure : {false, true}) {
                for (const bool withWindow : {false, true}) {
                    if (fault.over != (secure ? "http" : "https") &&
                        runsInMode(fault, *operation, withWindow)) {
                        run({*operation, secure, withWindow});
                    }
                }
            }
        }
    }

    void run(const Cell& cell)
    {
        SCOPED_TRACE(narrow(cell.operation.exportName) + (cell.secure ? ", https" : ", http") +
                     (cell.withWindow ? ", with a window" : ""));
        makeResultsThatMustNotStay(cell.operation);
        arrange(cell);
        const auto start = std::chrono::steady_clock::now();
        const auto left = startedBy(cell);
        if (cell.withWindow && left.empty()) {
            awaitEnd();
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, limitOf(fault));
        endHostFault(fault.host);
        log.forgetActions();
        EXPECT_EQ(left, fault.leaves);
        checkOutcome(cell);
        checkRequests(cell);
        checkLog(cell);
        if (fault.answer || fault.probe || fault.connection) {
            sandbox.forgetPlans();
        }
        restore(cell.secure);
        if (cell.operation.exportName == L"SaveTechNote") {
            checkNoteOfNextUpload(cell);
        }
        checkNextCall(cell);
    }

    void expectNoMoreMessages() { EXPECT_FALSE(m_window->next(50ms)) << "a message too many"; }

private:
    /// The status that the row names.
    int statusOf(const Cell& cell) const
    {
        const auto other = fault.but.find(cell.operation.exportName);
        return (other != fault.but.end() ? other->second : fault.gives).value_or(cell.operation.success);
    }

    bool succeeds(const Cell& cell) const { return statusOf(cell) == cell.operation.success; }

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
        if (fault.answer) {
            sandbox.plan(planned(*fault.answer, cell).to(pathOf(cell.operation)));
        }
        if (fault.probe) {
            sandbox.plan(planned(*fault.probe, cell).to("/"));
        }
        if (fault.connection) {
            auto order = *fault.connection;
            order["secure"] = cell.secure;
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
        if (fault.endPoint) {
            auto endPoint = *fault.endPoint;
            boost::replace_all(endPoint, L"{plain}", sandbox.http.substr(4));
            boost::replace_all(endPoint, L"{secure}", sandbox.https.substr(5));
            boost::replace_all(endPoint, L"{beyond}", withPortBeyond(sandbox.http).substr(4));
            SetEndPoint(endPoint);
        }
        if (!fault.credentials.empty()) {
            SetCredentials(fault.credentials[0], fault.credentials[1]);
        }
        if (!fault.host.empty()) {
            beginHostFault(fault.host, log, cell.secure ? sandbox.https : sandbox.http);
        }
    }

    Answer planned(const Script& script, const Cell& cell) const
    {
        const auto elsewhere =
            narrow(baseOf(cell.secure ? sandbox.http : sandbox.https)) + "/helpdesk/rest/Session";
        auto steps = script.steps;
        for (auto& step : steps) {
            boost::replace_all(step.bytes, "{status}",
                               cell.operation.success == 201 ? "201 Created" : "200 OK");
            boost::replace_all(step.bytes, "{elsewhere}", elsewhere);
        }
        return Answer::script(steps, script.then);
    }

    /// Calls the operation and names what leaves it, if that is documented; else the test fails.
    std::string startedBy(const Cell& cell)
    {
        try {
            fault.ownCall ? fault.ownCall() : cell.operation.start();
        } catch (const web::uri_exception& e) {
            EXPECT_EQ(std::string(e.what()).find(narrow(sandbox.password)), std::string::npos) << e.what();
            return "web::uri_exception";
        } catch (const web::json::json_exception&) {
            return "web::json::json_exception";
        } catch (const std::system_error&) {
            return "std::system_error";
        } catch (int) {
            return "what the callback threw";
        }
        return "";
    }

    void awaitEnd()
    {
        const bool loses = fault.is("losesWindow");
        if (loses) {
            m_window->die();
        } else {
            const auto message = m_window->next(limitOf(fault));
            ASSERT_TRUE(message) << "no message";
            EXPECT_EQ(message->message, WM_ASYNC_REQUEST_FINISHED);
        }
        if (m_traced) {
            ASSERT_TRUE(log.waitFor(L"~SignalAsyncRequestFinishedWrapper exiting."));
        }
        if (loses) {
            m_window = std::make_unique<TestWindow>();
        }
    }

    void checkOutcome(const Cell& cell)
    {
        const auto& name = cell.operation.exportName;
        if (fault.leaves.empty()) {
            const auto& status = GetLastResponse();
            EXPECT_EQ(status.httpStatusCode, statusOf(cell)) << narrow(status.errorMessage);
            EXPECT_NE(status.errorMessage.find(fault.text), std::wstring::npos)
                << narrow(status.errorMessage);
            EXPECT_TRUE(status.httpStatusCode < 600 || !status.errorMessage.empty());
        }
        const bool failed = !succeeds(cell);
        if (name == L"CreateTicket" && (failed || fault.ticketId)) {
            EXPECT_EQ(GetCreatedTicketID(), failed ? L"" : *fault.ticketId);
        }
        if (name == L"RequestTicketList" && (failed || fault.tickets)) {
            EXPECT_EQ(GetTicketList().size(), failed ? 0 : *fault.tickets);
        }
    }

    void checkRequests(const Cell& cell)
    {
        auto sent = sandbox.requests();
        boost::remove_erase_if(sent, [](const auto& request) {
            return !boost::starts_with(request.target, "/helpdesk"); // the hello of TLS on the plain port
        });
        for (const auto& request : sent) {
            EXPECT_TRUE(request.secure == cell.secure || !(fault.answer || fault.probe))
                << "sent to another server";
            EXPECT_EQ(request.headers.count("Authorization"), 0U) << "logged on by itself";
        }
        if (fault.is("withoutWindow")) {
            return; // an operation of the callback's own is among them
        }
        // Wine may send a request whose handle is closed in the last notification before.
        const bool wineSends = isWindows && fault.stage == "connection" && statusOf(cell) == 601;
        const bool arrives =
            fault.stage == "exchange" || wineSends || (fault.leaves.empty() && statusOf(cell) < 600);
        if (succeeds(cell) && fault.leaves.empty()) {
            EXPECT_EQ(sent.size(), 1U);
        } else {
            EXPECT_LE(sent.size(), arrives ? 1U : 0U);
        }
        EXPECT_LE(sandbox.probes(), cell.secure ? 1U : 0U);
        if (cell.secure && fault.host.empty()) {
            EXPECT_EQ(m_asked, fault.stage == "exchange" || fault.stage == "connection" ? 1 : 0);
        }
    }

    void checkLog(const Cell& cell)
    {
        for (const auto& line : log.texts()) {
            EXPECT_EQ(line.find(sandbox.password), std::wstring::npos) << narrow(line).substr(0, 1000);
            const auto password = line.find(L"password=");
            EXPECT_TRUE(password == std::wstring::npos || password + 9 == line.size() ||
                        line.compare(password + 9, LogText::mask.size(), LogText::mask) == 0)
                << narrow(line).substr(0, 1000);
        }
        if (m_traced && statusOf(cell) == 600) {
            EXPECT_FALSE(log.containing(L"FATAL ").empty());
        }
        EXPECT_TRUE(m_traced || log.lines().empty());
    }

    /// A note that failed on its way is forgotten; one that was never sent leaves the note before it.
    void checkNoteOfNextUpload(const Cell& cell)
    {
        if (succeeds(cell) || fault.stage == "preparation" || fault.stage == "probe") {
            return;
        }
        sandbox.forgetRequests();
        SaveAttachment({});
        const auto target = sandbox.onlyRequest().target;
        EXPECT_EQ(target.substr(target.find("entityId=")), "entityId=");
    }

    void checkNextCall(const Cell& cell)
    {
        if (cell.operation.exportName == L"CloseSession") {
            call(L"CreateSession");
        }
        call(cell.operation.exportName.c_str());
    }

    void restore(bool secure)
    {
        SetHWND(nullptr);
        SetEndPoint(secure ? sandbox.https : sandbox.http);
        SetCredentials(sandbox.user, sandbox.password);
        SetValidateCertificateCallback(nullptr);
    }

    std::unique_ptr<TestWindow> m_window = std::make_unique<TestWindow>();
    int m_asked = 0;
    bool m_traced = true;
};

std::vector<const Fault*> faultsThatWait(bool wait)
{
    std::vector<const Fault*> faults;
    for (const auto& fault : catalogue()) {
        if (waits(fault) == wait) {
            faults.push_back(&fault);
        }
    }
    return faults;
}

const auto nameOf = [](const auto& info) { return info.param->name; };
} // namespace

TEST_P(EveryFault, EndsAsTheCatalogueSays)
{
    if (fault.isOfWine) {
        std::cout << "Expected is what Wine's WinHTTP gives.\n"; // the self-check looks for it
    }
    if (fault.is("unsanitized") && isSanitized) {
        GTEST_SKIP() << "not possible, or too much, under a sanitizer";
    }
    const bool downloads = fault.is("downloads");
    const bool untraced = downloads || fault.is("large");
    if (!untraced) { // at trace level every body is read, and all of it logged
        runAll(log4cxx::Level::getTrace());
    }
    if (untraced || fault.is("text")) {
        runAll(log4cxx::Level::getOff());
    }
    expectNoMoreMessages();
    if (!isSanitized) {
        // More, and a server could exhaust a process: an answer of 256 MiB with its copies, or the values of
        // the largest JSON text that is read.
        EXPECT_LT(peakMemory(), (fault.is("large") ? 2048 : 1000) * mebibyte);
    }
    if (downloads) {
        const auto before = residentMemory();
        std::this_thread::sleep_for(500ms);
        EXPECT_LT(residentMemory(), before + 8 * mebibyte) << "the download goes on";
    }
}

INSTANTIATE_TEST_SUITE_P(Fault, EveryFault, testing::ValuesIn(faultsThatWait(false)), nameOf);
INSTANTIATE_TEST_SUITE_P(Waiting, EveryFault, testing::ValuesIn(faultsThatWait(true)), nameOf);
