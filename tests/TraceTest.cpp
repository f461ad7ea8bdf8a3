// Whole calls at trace level, line by line.
#include "support/VantryTest.h"

#include <boost/algorithm/string/erase.hpp>

namespace
{
struct WholeCall
{
    std::string log; ///< its file
    std::wstring operation;
    Answer answer; ///< JSON whose members come sorted, so that it is logged as the server sent it
};

class EveryWholeCall : public VantryTest, public testing::WithParamInterface<WholeCall>
{};

Answer sessionAnswer()
{
    return Answer(200, R"({"sessionKey":"abc","type":"Session"})").header("Set-Cookie", "X=1; Path=/");
}

const std::vector<WholeCall> wholeCalls{
    {"session-opened", L"CreateSession", sessionAnswer()},
    {"cookie-without-attribute", L"CreateSession",
     Answer(200, R"({"sessionKey":"k"})").header("Set-Cookie", "X=1")},
    {"session-closed", L"CloseSession", Answer(200, R"({"closed":true})")},
    {"note-saved", L"SaveTechNote", Answer(201, R"({"id":2001})")},
    {"ticket-created", L"CreateTicket", Answer(201, R"({"id":1001})")},
    {"ticket-without-body", L"CreateTicket", Answer(201, "null")},
    {"tickets-listed", L"RequestTicketList",
     Answer(200, R"([{"displayClient":"C","id":1,"shortDetail":"D","shortSubject":"S"},{"id":"2"}])")},
    {"no-list", L"RequestTicketList", Answer(200, R"({"a":1})")}};

using Trace = VantryTest;
} // namespace

TEST_P(EveryWholeCall, LeavesItsLog)
{
    const auto& row = GetParam();
    sandbox.plan(row.answer);
    operation(row.operation).start();
    expectLog(row.log);
}

INSTANTIATE_TEST_SUITE_P(Log, EveryWholeCall, testing::ValuesIn(wholeCalls),
                         [](const auto& info) { return boost::erase_all_copy(info.param.log, "-"); });

TEST_F(Trace, OfASessionOverTlsWithACallbackAndWithoutOne)
{
    useHttps();
    const ValidateCertificateCallback trust = [](const CERT_CONTEXT&) { return true; };
    for (const auto& [file, callback] :
         {std::pair{"session-opened-tls", trust}, {"session-opened-tls-unasked", nullptr}}) {
        SetValidateCertificateCallback(callback);
        log.clear();
        sandbox.plan(sessionAnswer().to("/helpdesk/rest/Session"));
        CreateSession();
        expectLog(file);
    }
}

TEST_F(Trace, OfAnUploadWithWhatSessionAndNoteLeft)
{
    sandbox.plan(sessionAnswer());
    CreateSession();
    sandbox.plan(Answer(201, R"({"id":2001})"));
    operation(L"SaveTechNote").start();
    log.clear();
    sandbox.plan(Answer(200, R"({"reason":"Too big"})"));
    operation(L"SaveAttachment").start();
    expectLog("file-refused");
}

TEST_F(Trace, EveryLineCarriesItsPlaceInTheSource)
{
    operation(L"CreateTicket").start();
    const auto lines = log.lines();
    EXPECT_FALSE(lines.empty());
    for (const auto& line : lines) {
        const bool isScope =
            line.text.rfind(L"TRACE ", 0) == 0 && line.text.find(L"Sync.") == std::wstring::npos;
        EXPECT_EQ(line.file.find("LumoLogging.h") != std::string::npos, isScope) << line.file;
        EXPECT_TRUE(isScope || line.file.find("api/") != std::string::npos ||
                    line.file.find("client/") != std::string::npos)
            << line.file;
        EXPECT_GT(line.line, 0);
    }
}

/// How each operation judges a code: its own success, 200, 201, another success and an error of the server's.
TEST_F(Trace, OfWhatTheOperationsThinkOfEachCode)
{
    CapturedLog::setLevel(log4cxx::Level::getError());
    std::vector<std::wstring> lines;
    for (const auto& call : operations()) {
        for (const int code : {200, 201, 204, 404}) {
            log.clear();
            sandbox.plan(Answer(code, "", ""));
            call.start();
            EXPECT_EQ(GetLastResponse().httpStatusCode, code);
            lines.push_back(call.exportName + L", " + std::to_wstring(code));
            const auto logged = log.texts();
            lines.insert(lines.end(), logged.begin(), logged.end());
        }
    }
    expectLog("judgements", lines);
}

TEST_P(EveryOperation, AgainstNoServerLeavesStatus600AndTheSystemsTextInTheLog)
{
    SetEndPoint(L"http://localhost:1/helpdesk/rest");
    log.clear();
    GetParam().start();
    const auto texts = log.texts();
    expectLog("no-server-" + narrow(GetParam().exportName), texts,
              {{GetLastResponse().errorMessage, L"{message}"}});
}

INSTANTIATE_TEST_SUITE_P(Call, EveryOperation, testing::ValuesIn(operations()),
                         testing::PrintToStringParamName());
