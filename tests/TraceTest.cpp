// Whole calls at trace level, line by line.
#include "support/VantryTest.h"

using namespace Trace;

namespace
{
class WholeCall : public VantryTest
{
protected:
    void expectTrace(const Operation& call, const Lines& body, const std::wstring& savedNote = L"")
    {
        const auto url = endPoint + call.path + savedNote;
        EXPECT_TRUE(
            same(synchronous(call, prepared(call, url) + validated(call, validation) + body), log.texts()));
    }

    /// The exchange, answered with JSON whose members come sorted, so that its text is what the server sent.
    static Lines answered(const Operation& call, const std::wstring& code, const std::wstring& reason,
                          const std::string& answer, const Lines& before = {})
    {
        return sent(call,
                    {before,
                     jsonAnswer(code + L". HTTP Status message: " + reason, answer.size()),
                     {info(api + call.exchange + L"; Server's response: " + wide(answer))},
                     {}},
                    code, reason);
    }

    void expectOpenedSession()
    {
        const std::string body = R"({"sessionKey":"abc","type":"Session"})";
        sandbox.plan(Answer(200, body).header("Set-Cookie", "X=1; Path=/").to("/helpdesk/rest/Session"));
        CreateSession();
        const auto& call = operation(L"CreateSession");
        expectTrace(call, answered(call, L"200", L"OK", body) +
                              Lines{info(L"Session id is: abc Cookie id is: X=1")});
    }

    std::wstring endPoint = sandbox.http;
    Lines validation = notSecured();
};
} // namespace

TEST_F(WholeCall, OpensASession)
{
    expectOpenedSession();
}

TEST_F(WholeCall, OpensASessionOverTlsWhenTheHostTrustsTheServer)
{
    useHttps();
    endPoint = sandbox.https;
    SetValidateCertificateCallback([](const CERT_CONTEXT&) { return true; });
    log.clear();
    validation = probe(baseOf(endPoint), scope(api + L"ValidateCertificate"));
    expectOpenedSession();
}

TEST_F(WholeCall, OpensASessionOverTlsWithoutACallback)
{
    useHttps();
    endPoint = sandbox.https;
    validation =
        probe(baseOf(endPoint), scope(api + L"ValidateCertificate",
                                      {info(L"(m_certificateValidator == nullptr || m_pVantryCertContext == "
                                            L"nullptr) - Certificate validation is skipped.")}));
    expectOpenedSession();
}

TEST_F(WholeCall, ClosesASession)
{
    const std::string body = R"({"closed":true})";
    sandbox.plan(Answer(200, body));
    const auto& call = operation(L"CloseSession");
    call.start();
    expectTrace(call, answered(call, L"200", L"OK", body));
}

TEST_F(WholeCall, SavesANote)
{
    const std::string body = R"({"id":2001})";
    sandbox.plan(Answer(201, body));
    const auto& call = operation(L"SaveTechNote");
    call.start();
    expectTrace(call, answered(call, L"201", L"Created", body) +
                          Lines{info(api + L"saveTechNote; LastSavedTechNoteID is: 2001")});
}

TEST_F(WholeCall, CreatesATicket)
{
    const std::string body = R"({"id":1001})";
    sandbox.plan(Answer(201, body));
    const auto& call = operation(L"CreateTicket");
    call.start();
    expectTrace(call, answered(call, L"201", L"Created", body) +
                          Lines{info(api + L"createTicket; Returning created ticket ID: 1001")});
}

TEST_F(WholeCall, SaysThatATicketCameWithoutABody)
{
    sandbox.plan(Answer(201, "null"));
    const auto& call = operation(L"CreateTicket");
    call.start();
    expectTrace(call, sent(call, {{}, jsonAnswer(L"201. HTTP Status message: Created", 4), {}, {}}, L"201",
                           L"Created") +
                          Lines{error(api + L"createTicket; Answer form the server is null")});
}

TEST_F(WholeCall, ListsTickets)
{
    const std::string body =
        R"([{"displayClient":"C","id":1,"shortDetail":"D","shortSubject":"S"},{"id":"2"}])";
    sandbox.plan(Answer(200, body));
    const auto& call = operation(L"RequestTicketList");
    call.start();
    const auto* const entry = L"From server's response we created a ticket: id: ";
    expectTrace(call, answered(call, L"200", L"OK", body) +
                          Lines{info(entry + std::wstring(L"1 Name: S Detail: D ClientName: C")),
                                info(entry + std::wstring(L"\"2\" Name:  Detail:  ClientName: ")),
                                info(L"We received: 2 tickets.")});
}

TEST_F(WholeCall, SaysThatTheAnswerIsNoList)
{
    const std::string body = R"({"a":1})";
    sandbox.plan(Answer(200, body));
    const auto& call = operation(L"RequestTicketList");
    call.start();
    expectTrace(call, answered(call, L"200", L"OK", body) +
                          Lines{error(L"Answer form the server is not an array")});
}

TEST_F(WholeCall, UploadsAFileWithWhatSessionAndNoteLeft)
{
    sandbox.plan(Answer(200, R"({"sessionKey":"abc"})").header("Set-Cookie", "X=1; Path=/"));
    sandbox.plan(Answer(201, R"({"id":2001})"));
    CreateSession();
    operation(L"SaveTechNote").start();
    log.clear();

    sandbox.plan(Answer(200, R"({"reason":"Too big"})"));
    const auto& call = operation(L"SaveAttachment");
    call.start();
    const auto length = std::to_wstring(sandbox.requests().back().body.size());
    const auto name = api + L"unsafe_sendRequest_UploadAttachment; ";
    expectTrace(
        call,
        sent(call,
             {uploadPrepared(L"X=1; wosid=abc; vantryuser_helpdesk=technician", length, baseOf(endPoint)),
              jsonAnswer(L"200. HTTP Status message: OK", 20),
              {info(name + LR"(Server's response: {"reason":"Too big"})"),
               info(name + L"Trying to set an error to the response status"), error(name + L"\"Too big\"")},
              {}},
             L"417", L"\"Too big\"") +
            Lines{error(api + L"saveAttachment; " + failure)},
        L"2001");
}

TEST_F(WholeCall, EveryLineCarriesItsPlaceInTheSource)
{
    operation(L"CreateTicket").start();
    const auto lines = log.lines();
    EXPECT_FALSE(lines.empty());
    for (const auto& line : lines) {
        const bool isScope =
            line.text.rfind(L"TRACE ", 0) == 0 && line.text.find(L"Sync.") == std::wstring::npos;
        EXPECT_EQ(line.file.find("LumoLogging.h") != std::string::npos, isScope) << line.file;
        EXPECT_EQ(line.file.find(".cpp") != std::string::npos, !isScope) << line.file;
        EXPECT_GT(line.line, 0);
    }
}

/// How each operation judges a code: its own success, 200, 201 and an error of the server's.
TEST_P(EveryOperation, ComplainsOfEveryCodeButItsOwn)
{
    const auto& call = GetParam();
    const auto tail =
        call.exportName == L"SaveTechNote" ? L" Setting to LastSavedTechNoteId empty string" : L"";
    const bool complains = call.exportName != L"CreateTicket";
    for (const int code : {200, 201, 204, 404}) {
        SCOPED_TRACE(code);
        log.clear();
        sandbox.plan(Answer(code, "", ""));
        call.start();
        EXPECT_EQ(GetLastResponse().httpStatusCode, code);
        const auto name = api + call.member + L"; ";
        const auto expected =
            complains && code != call.success ? Lines{error(name + failure + tail)} : Lines{};
        EXPECT_TRUE(same(expected, log.with(L"ERROR CVantryApi " + name + failure)));
    }
}

TEST_P(EveryOperation, AgainstNoServerLeavesStatus600AndTheSystemsTextInTheLog)
{
    const auto& call = GetParam();
    const std::wstring endPoint = L"http://localhost:1/helpdesk/rest";
    SetEndPoint(endPoint);
    log.clear();
    call.start();
    const auto texts = log.texts();

    const auto& status = GetLastResponse();
    EXPECT_EQ(status.httpStatusCode, 600);
    EXPECT_FALSE(status.errorMessage.empty());
    const auto before =
        call.exportName == L"SaveAttachment"
            ? uploadPrepared(L"; wosid=; vantryuser_helpdesk=technician", L"\u2026", baseOf(endPoint))
            : Lines{};
    const auto tail =
        call.exportName == L"SaveTechNote" ? L" Setting to LastSavedTechNoteId empty string" : L"";
    const auto judgement = call.exportName == L"CreateTicket"
                               ? Lines{}
                               : Lines{error(api + call.member + L"; " + failure + tail)};
    const Lines caught{
        fatal(utils + L"safe_CallMethod; http_exception happened: \u2026"),
        fatal(utils + L"safe_CallMethod; Error Code: \u2026; Message: " + status.errorMessage)};
    EXPECT_TRUE(same(synchronous(call, prepared(call, endPoint + call.path) + validated(call, notSecured()) +
                                           sent(call, {before, {}, {}, caught}, L"600", status.errorMessage) +
                                           judgement),
                     texts));
}

INSTANTIATE_TEST_SUITE_P(Call, EveryOperation, testing::ValuesIn(operations()), nameOfParameter);
