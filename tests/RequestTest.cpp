// What reaches the server, byte by byte.
#include "support/VantryTest.h"

#include <chrono>
#include <ctime>
#include <numeric>
#include <regex>

namespace
{
class RequestBytes : public VantryTest
{
protected:
    void expectRequest(const std::string& method, const std::string& target, const std::string& body = "")
    {
        const auto request = sandbox.onlyRequest();
        EXPECT_FALSE(request.secure);
        EXPECT_EQ(request.method, method);
        EXPECT_EQ(request.target, target);
        EXPECT_EQ(request.body, body);
        auto headers = request.headers;
        if (method == "POST") {
            EXPECT_EQ(headers["Content-Type"], "application/json");
            EXPECT_EQ(headers["Content-Length"], std::to_string(body.size()));
            headers.erase("Content-Type");
            headers.erase("Content-Length");
        }
        headers.erase("Cookie"); // closing a session sends one, which its own test compares
        EXPECT_TRUE(headers.empty()) << headers.begin()->first << ": " << headers.begin()->second;
    }

    /// Opens a session and saves a note; the sandbox forgets both requests.
    void open(const std::string& sessionKey, const std::string& cookie, const std::string& noteId)
    {
        sandbox.plan(Answer(200, R"({"sessionKey":)" + sessionKey + "}").header("Set-Cookie", cookie));
        CreateSession();
        sandbox.plan(Answer(201, R"({"id":)" + noteId + "}"));
        SaveTechNote({});
        sandbox.forgetRequests();
        log.clear();
    }

    const std::string base = "/helpdesk/rest";
    const std::string credentials = "username=technician&password=wrench";
};
} // namespace

TEST_F(RequestBytes, ASessionIsOpenedWithNothingButTheCredentials)
{
    CreateSession();
    expectRequest("GET", base + "/Session?" + credentials);
    EXPECT_EQ(sandbox.onlyRequest().headers.count("Cookie"), 0U);
}

TEST_F(RequestBytes, CredentialsAreEncodedExactlyOnce)
{
    const std::vector<std::pair<std::wstring, std::string>> table{
        {L"a b&c=d+\u00E9%", "a%20b%26c%3Dd%2B%C3%A9%25"},
        {L"%20", "%2520"},
        {L"\u20AC\u4E2D/?#\"", "%E2%82%AC%E4%B8%AD%2F%3F%23%22"},
        {L"plain-._~", "plain-._~"},
        {L"", ""}};
    for (const auto& [text, encoded] : table) {
        for (const auto& call : operations()) {
            if (call.path.find(L"username=") == std::wstring::npos) {
                continue;
            }
            SCOPED_TRACE(narrow(call.exportName) + " with " + encoded);
            sandbox.forgetRequests();
            SetCredentials(text, text);
            call.start();
            const auto target = sandbox.onlyRequest().target;
            const auto expected = "username=" + encoded + "&password=" + encoded;
            EXPECT_EQ(target.substr(target.find("username=")), expected);
        }
    }
}

TEST_F(RequestBytes, ASessionIsClosedWithItsKeyAndCookieWhichAreKept)
{
    open("\"k+e%y\"", "JSESSIONID=1; Path=/; HttpOnly", "1");
    for (int repetition = 0; repetition < 2; ++repetition) {
        sandbox.forgetRequests();
        sandbox.plan(Answer(200, "{}"));
        CloseSession();
        expectRequest("DELETE", base + "/Session?sessionKey=k+e%y");
        EXPECT_EQ(sandbox.onlyRequest().headers["Cookie"], "JSESSIONID=1");
    }
}

TEST_F(RequestBytes, ANoteIsSentAsJsonAndItsWorkTimeWithoutASign)
{
    SaveTechNote({L"1001", L"say \"hi\"\n\u00E9\u20AC", 90, true});
    expectRequest("POST", base + "/TechNotes?" + credentials,
                  "{\"isHidden\":false,\"jobticket\":{\"id\":\"1001\",\"type\":\"JobTicket\"},\"noteText\":"
                  "\"say \\\"hi\\\"\\n\xC3\xA9\xE2\x82\xAC\",\"workTime\":\"90\"}");
    sandbox.forgetRequests();
    SaveTechNote({L"", L"", 4294967295U, false});
    expectRequest(
        "POST", base + "/TechNotes?" + credentials,
        R"({"isHidden":true,"jobticket":{"id":"","type":"JobTicket"},"noteText":"","workTime":"4294967295"})");
}

TEST_F(RequestBytes, TheKindOfATicketDecidesItsShapeAndEmptyTextsAreSentToo)
{
    const std::string tail = R"("detail":"D","subject":"S"})";
    const std::string asset = R"({"assets":[{"id":"42","type":"Asset"}],)" + tail;
    const std::string client = R"({"clientReporter":{"id":"42","type":"Client"},)" + tail;
    for (const auto& [type, body] : {std::pair{0, asset}, {1, client}, {2, asset}, {-1, asset}}) {
        SCOPED_TRACE(type);
        sandbox.forgetRequests();
        CreateTicket({L"42", static_cast<VantryType>(type), L"S", L"D"});
        expectRequest("POST", base + "/Tickets?" + credentials, body);
    }
    sandbox.forgetRequests();
    CreateTicket({});
    expectRequest("POST", base + "/Tickets?" + credentials,
                  R"({"assets":[{"id":"","type":"Asset"}],"detail":"","subject":""})");
}

TEST_F(RequestBytes, TheKindOfAListDecidesItsQualifierWhichHoldsTheRawIdentifier)
{
    for (const auto& [type, field] :
         {std::pair{0, "assets.assetId"}, {1, "clientId"}, {2, "clientId"}, {-1, "clientId"}}) {
        for (const std::string identifier : {"42", "4&2", "4)2", "4%202", "a+b=c", ""}) {
            SCOPED_TRACE(identifier + " of type " + std::to_string(type));
            sandbox.forgetRequests();
            RequestTicketList(wide(identifier), static_cast<VantryType>(type));
            expectRequest("GET",
                          base + "/Tickets?qualifier=(" + field + "=" + identifier + ")&" + credentials);
        }
    }
}

namespace
{
class UploadBytes : public RequestBytes
{
protected:
    /// Uploads and returns the request, whose boundary must be the time of the upload.
    Request upload(const Attachment& attachment)
    {
        sandbox.forgetRequests();
        const auto before = std::time(nullptr);
        SaveAttachment(attachment);
        const auto after = std::time(nullptr);
        auto request = sandbox.onlyRequest();
        static const std::regex contentType("multipart/form-data; boundary====(\\d+)===");
        std::smatch parts;
        EXPECT_TRUE(std::regex_match(request.headers["Content-Type"], parts, contentType));
        boundary = parts[1];
        EXPECT_GE(boundary, std::to_string(before));
        EXPECT_LE(boundary, std::to_string(after));
        return request;
    }

    std::string bodyOf(const std::string& fileName, const std::string& content) const
    {
        return "\r\n--===" + boundary + "===\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" +
               fileName + "\"\r\nContent-Type: null\r\nContent-Transfer-Encoding: binary\r\n\r\n" + content +
               "\r\n--===" + boundary + "===--\r\n";
    }

    std::string boundary;
};
} // namespace

TEST_F(UploadBytes, TheRequestCarriesTheSessionTheNoteAndNoCredentials)
{
    open("\"abc\"", "X=1; Path=/", "2001");
    auto request = upload({"content", L"file.txt"});
    EXPECT_FALSE(request.secure);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/helpdesk/attachment/upload?type=TechNote&entityId=2001");
    const std::map<std::string, std::string> headers{
        {"Cache-Control", "no-cache"},
        {"Content-Length", std::to_string(request.body.size())},
        {"Content-Type", "multipart/form-data; boundary====" + boundary + "==="},
        {"Cookie", "X=1; wosid=abc; vantryuser_helpdesk=technician"},
        {"Pragma", "no-cache"}};
    EXPECT_EQ(request.headers, headers);
}

TEST_F(UploadBytes, WithoutASessionTheCookieKeepsItsThreeParts)
{
    SetCredentials(L"", L"");
    auto request = upload({"", L""});
    EXPECT_EQ(request.target, "/helpdesk/attachment/upload?type=TechNote&entityId=");
    EXPECT_EQ(request.headers["Cookie"], "; wosid=; vantryuser_helpdesk=");
}

TEST_F(UploadBytes, AnyContentAndFileNameArriveUnchanged)
{
    const auto now = std::time(nullptr);
    std::string boundaries;
    for (int second = 0; second < 5; ++second) {
        boundaries += "\r\n--===" + std::to_string(now + second) + "===--\r\n";
    }
    std::string everyByte(256, '\0');
    std::iota(everyByte.begin(), everyByte.end(), '\0');
    const std::vector<Attachment> table{{"", L"empty.txt"},
                                        {"text", L"a \"quoted\" name; x=1.txt"},
                                        {std::string("\0\r\n\0", 4), L"\u00E9\u20AC.bin"},
                                        {boundaries, L""},
                                        {everyByte, L"bytes"},
                                        {std::string(3000000, 'x'), L"large"}};
    for (const auto& attachment : table) {
        SCOPED_TRACE(narrow(attachment.fileName));
        const auto request = upload(attachment);
        EXPECT_TRUE(request.body == bodyOf(inThreadCodePage(attachment.fileName), attachment.data));
        EXPECT_EQ(log.containing(L"Content Length is: " + std::to_wstring(request.body.size())).size(), 1U);
    }
}

/// Identifiers that the server gave come back to it as it gave them.
TEST_F(RequestBytes, TextOfTheServerIsEncodedOnlyWhereAnAddressNeedsIt)
{
    struct Row
    {
        std::string json; ///< the value that the server sends
        std::string key;  ///< in the address of the closing
        std::string note; ///< in the address of the upload
    };
    const std::vector<Row> table{{"77", "77", "77"},
                                 {R"("77")", "77", "%2277%22"},
                                 {R"(" 7 7 ")", "7%207", "%22%207%207%20%22"},
                                 {R"("a%b+c&d=e?%2B")", "a%b+c&d=e?%2B", "%22a%b+c&d=e?%2B%22"},
                                 {R"("é#[")", "%C3%A9%23%5B", "%22%C3%A9%23%5B%22"},
                                 {R"({"a":[1]})", "%7B%22a%22:%5B1%5D%7D", "%7B%22a%22:%5B1%5D%7D"},
                                 {"true", "true", "true"},
                                 {"null", "null", "null"}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.json);
        open(row.json, "X=1; Path=/", row.json);
        CloseSession();
        EXPECT_EQ(sandbox.onlyRequest().target, base + "/Session?sessionKey=" + row.key);
        sandbox.forgetRequests();
        SaveAttachment({"x", L"x"});
        EXPECT_EQ(sandbox.onlyRequest().target,
                  "/helpdesk/attachment/upload?type=TechNote&entityId=" + row.note);
    }
}
