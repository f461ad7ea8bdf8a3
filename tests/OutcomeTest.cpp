// What the host reads back: statuses, texts and results, and when they are kept, replaced or cleared.
#include "support/VantryTest.h"

using namespace LogText;

namespace
{
using Outcome = VantryTest;

struct Body
{
    std::string type;
    std::string body;
    bool traced = true;
};

const std::vector<Body> bodies{{"application/json", R"([{"id":1}])"},
                               {"application/json;charset=utf-8", R"([{"id":1}])"},
                               {"application/json", "{no json"},
                               {"text/plain", R"([{"id":1}])"},
                               {"text/plain; charset=utf-8", R"(["é"])"},
                               {"text/html", "<p>Sorry</p>"},
                               {"application/x-text", R"([{"id":1}])"},
                               {"application/octet-stream", R"([{"id":1}])"},
                               {"application/octet-stream", R"([{"id":1}])", false},
                               {"Application/JSON", R"([{"id":1}])", false},
                               {"TEXT/plain", R"([{"id":1}])", false},
                               {"", "", false},
                               {"", ""}};
} // namespace

/// The file gives status, number of tickets and what reading the body logs.
TEST_F(Outcome, ABodyIsReadByItsContentTypeAlone)
{
    std::vector<std::wstring> lines;
    for (const auto& row : bodies) {
        CapturedLog::setLevel(row.traced ? log4cxx::Level::getTrace() : log4cxx::Level::getDebug());
        log.clear();
        sandbox.plan(Answer(200, row.body, row.type));
        RequestTicketList(L"42", Client);
        const auto logged = log.texts();
        lines.push_back(wide("\"" + row.type + "\" " + row.body + " -> " +
                             std::to_string(GetLastResponse().httpStatusCode) + ", " +
                             std::to_string(GetTicketList().size())));
        std::copy_if(logged.begin(), logged.end(), std::back_inserter(lines), [](const auto& line) {
            return line.find(L"::handleResponse") != std::wstring::npos ||
                   line.find(L"Full server") != std::wstring::npos;
        });
    }
    expectLog("bodies", lines);
}

TEST_F(Outcome, ABodyOfNoUseIsReadForTheTraceAloneAndMayBeBroken)
{
    const auto broken = Answer::bytes("HTTP/1.1 200 Fine\r\nContent-Type: application/octet-stream\r\n"
                                      "Content-Length: 100\r\n\r\nshort");
    for (const bool traced : {false, true}) { // WinHTTP's reading ends with what there is, at least in Wine
        CapturedLog::setLevel(traced ? log4cxx::Level::getTrace() : log4cxx::Level::getDebug());
        sandbox.plan(broken);
        CreateSession();
        EXPECT_EQ(log.containing(L"WARN CVantryApi ").size(), traced && !isWindows ? 1U : 0U);
        expectStatus(200, L"Fine");
    }
}

TEST_F(Outcome, TheSessionIsWhatTheLastAnswerWithABodySaid)
{
    const auto raw = [](const std::string& cookies, const std::string& body) {
        return Answer::bytes("HTTP/1.1 200 OK\r\n" + cookies +
                             "Content-Type: application/json\r\nContent-Length: " +
                             std::to_string(body.size()) + "\r\n\r\n" + body);
    };
    const std::string key = R"({"sessionKey":"k"})";
    // Key and cookie as closing the session sends them.
    const std::vector<std::pair<Answer, std::string>> table{
        {raw("Set-Cookie: X=1; Path=/\r\n", R"({"sessionKey":"abc"})"), "abc X=1"},
        {Answer(200, "", ""), "abc X=1"},                                           // no body: left
        {Answer(200, "null").header("Set-Cookie", "Y=2; Path=/"), "abc X=1"},       // nor a null one
        {Answer(200, "{broken").header("Set-Cookie", "Y=2; Path=/"), "abc X=1"},    // nor an unreadable one
        {raw(std::string("Set-Cookie: Y\0=2; Path=/\r\n", 26), key), "abc X=1"},    // no text for a header
        {raw("Set-Cookie: Y=2\r\n", key), "abc X=1"},                               // no attribute: an error
        {Answer(401, R"({"sessionKey":5})").header("Set-Cookie", "Y=2;"), "5 Y=2"}, // whatever the code
        {raw("", key), "k "},                                                       // no cookie: emptied
        {raw("Set-Cookie: A=1; Path=/\r\nSet-Cookie: B=2; Path=/\r\n", key), "k A=1"},
        {raw("set-cookie: C=3; Path=/\r\n", key), "k "}, // the name counts letter by letter
        {raw("Set-Cookie: ;\r\n", R"({"a":1})"), "null "},
        {raw("Set-Cookie: D=4;E=5;\r\n", R"([1])"), "null D=4"}};
    for (std::size_t row = 0; row < table.size(); ++row) {
        SCOPED_TRACE("row " + std::to_string(row));
        sandbox.plan(table[row].first);
        CreateSession();
        sandbox.forgetRequests();
        CloseSession();
        auto request = sandbox.onlyRequest();
        EXPECT_EQ(request.target.substr(request.target.find('=') + 1) + " " + request.headers["Cookie"],
                  table[row].second);
    }
}

TEST_F(Outcome, ANotesAndATicketsIdAreTheServersTextOfTheLastSuccess)
{
    struct Row
    {
        Answer answer;
        std::string note; ///< in the address of an upload
        std::wstring ticket;
    };
    const std::vector<Row> table{{Answer(201, R"({"id":77})"), "77", L"77"},
                                 {Answer(200, R"({"id":78})"), "", L""},
                                 {Answer(201, R"({"id":"77"})"), "%2277%22", L"\"77\""},
                                 {Answer(201, R"({"a":9})"), "null", L"null"},
                                 {Answer(201, R"([1])"), "null", L"null"},
                                 {Answer(201, "", ""), "null", L""},
                                 {Answer(500, R"({"id":11})"), "", L""}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.answer.plan().dump());
        sandbox.plan(row.answer);
        SaveTechNote({});
        sandbox.forgetRequests();
        SaveAttachment({});
        EXPECT_EQ(sandbox.onlyRequest().target,
                  "/helpdesk/attachment/upload?type=TechNote&entityId=" + row.note);
        sandbox.plan(row.answer);
        CreateTicket({});
        EXPECT_EQ(GetCreatedTicketID(), row.ticket);
    }
}

TEST_F(Outcome, TicketsAreListedByTheirMembers)
{
    sandbox.plan(Answer(200, R"([
        {"id":1001,"shortSubject":"Subject é","shortDetail":"Detail","displayClient":"Client","other":"x"},
        {"id":"1001","shortSubject":null,"ShortDetail":"no","displayClient":""},
        {"id":null},
        {"unknown":1}])"));
    RequestTicketList(L"42", Client);
    const auto& list = GetTicketList();
    ASSERT_EQ(list.size(), 4U);
    const std::vector<std::vector<std::wstring>> expected{{L"1001", L"Subject \u00E9", L"Detail", L"Client"},
                                                          {L"\"1001\"", L"", L"", L""},
                                                          {L"", L"", L"", L""},
                                                          {L"", L"", L"", L""}};
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ((std::vector{list[i].id, list[i].name, list[i].detail, list[i].clientName}), expected[i]);
    }
    EXPECT_EQ(log.containing(L"INFO CVantryApi We received: 4 tickets.").size(), 1U);
}

TEST_F(Outcome, AListIsEmptiedByEveryRequest)
{
    for (const auto& [code, body] : {std::pair{201, R"([{"id":1}])"},
                                     {204, ""},
                                     {200, "{}"},
                                     {200, "null"},
                                     {200, "[]"},
                                     {600, "broken"}}) {
        SCOPED_TRACE(body);
        sandbox.plan(Answer(200, R"([{"id":1},{"id":2}])"));
        RequestTicketList(L"42", Client);
        EXPECT_EQ(GetTicketList().size(), 2U);
        sandbox.plan(Answer(code == 600 ? 200 : code, body));
        RequestTicketList(L"42", Client);
        EXPECT_TRUE(GetTicketList().empty());
        EXPECT_EQ(GetLastResponse().httpStatusCode, code);
    }
    EXPECT_EQ(log.containing(L"INFO CVantryApi We received: 0 tickets.").size(), 1U);
}

TEST_F(Outcome, AReasonAgainstAnUploadIsNeverReportedAs200)
{
    struct Row
    {
        int sent;
        std::string body;
        int code;
        std::wstring message;
        bool complains;
    };
    const std::vector<Row> table{{200, R"({"reason":"Too big"})", 417, L"\"Too big\"", true},
                                 {201, R"({"reason":"Too big"})", 201, L"\"Too big\"", false},
                                 {400, R"({"reason":"Too big"})", 400, L"\"Too big\"", true},
                                 {200, R"({"reason":7})", 417, L"7", true},
                                 {200, R"({"reason":null})", 200, L"OK", true},
                                 {200, R"([1])", 200, L"OK", true},
                                 {201, R"({"id":1})", 201, L"Created", false},
                                 {200, "null", 200, L"OK", true}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.body);
        log.clear();
        sandbox.plan(Answer(row.sent, row.body));
        SaveAttachment({});
        expectStatus(row.code, row.message);
        const auto errors = [&](const std::wstring& text) {
            return log.containing(L"ERROR CVantryApi " + api + text).size();
        };
        EXPECT_EQ(errors(L"saveAttachment; We've got an error during request."), row.complains ? 1U : 0U);
        const bool named = row.message != L"OK" && row.message != L"Created";
        EXPECT_EQ(errors(L"unsafe_sendRequest_UploadAttachment; " + row.message), named ? 1U : 0U);
    }
}
