// The library as a C program sees it.
#include "platform/PlatformSupport.h"
#include "support/Sandbox.h"
#include "support/Text.h"

#include "vantry.h"

#include <gtest/gtest.h>

#include <xmmintrin.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace
{
struct Free
{
    void operator()(vantry_result* result) const { vantry_result_free(result); }
};
using Result = std::unique_ptr<vantry_result, Free>;

const char* const printer = "Gr\xC3\xB6\xC3\x9Fter Drucker \xE2\x82\xAC \xF0\x9F\x96\xA8";

Result createTicket(const char* subject = printer)
{
    const vantry_new_ticket ticket{sizeof(ticket), "42", VANTRY_CLIENT, subject, "It is on fire."};
    return Result(vantry_create_ticket(&ticket));
}

Result saveNote(const char* ticketId)
{
    const vantry_tech_note note{sizeof(note), ticketId, "Put out.", 15, 1};
    return Result(vantry_save_tech_note(&note));
}

Result createSession()
{
    return Result(vantry_create_session());
}

/// On a ticket of its own, within a session.
Result saveNote()
{
    EXPECT_EQ(vantry_result_status(createSession().get()), 200);
    return saveNote(vantry_result_ticket_id(createTicket().get()));
}

Result saveAttachment(const char* noteId, const std::string& data, const char* name = "counter.txt")
{
    const vantry_attachment file{sizeof(file), noteId, name, data.data(), data.size()};
    return Result(vantry_save_attachment(&file));
}

Result list(const char* entityId = "42")
{
    return Result(vantry_request_ticket_list(entityId, VANTRY_CLIENT));
}

void expectStatus(const Result& result, int status)
{
    EXPECT_EQ(vantry_result_status(result.get()), status) << vantry_result_message(result.get());
    EXPECT_STRNE(vantry_result_message(result.get()), "");
    EXPECT_EQ(vantry_result_succeeded(result.get()), status == 200 || status == 201 ? 1 : 0);
}

std::vector<std::string> textsOf(const Result& result, std::size_t index)
{
    vantry_ticket ticket{};
    ticket.size = sizeof(ticket);
    EXPECT_EQ(vantry_result_ticket(result.get(), index, &ticket), VANTRY_OK);
    return {ticket.id, ticket.name, ticket.detail, ticket.client_name};
}

class CApiTest : public testing::Test
{
protected:
    CApiTest()
    {
        EXPECT_EQ(vantry_set_endpoint(narrow(sandbox.http).c_str()), VANTRY_OK);
        EXPECT_EQ(setCredentials(), VANTRY_OK);
    }

    std::int32_t setCredentials() const
    {
        return vantry_set_credentials(narrow(sandbox.user).c_str(), narrow(sandbox.password).c_str());
    }

    void useHttps()
    {
        trustAuthority(sandbox.authorityFile, sandbox.get("/ca.der"));
        EXPECT_EQ(vantry_set_endpoint(narrow(sandbox.https).c_str()), VANTRY_OK);
    }

    Sandbox sandbox;
};

/// A host whose certificate callback notes what it is shown.
struct Asked
{
    static void VANTRY_CALL callback(void* user, const char* host, const std::uint8_t* der, std::size_t size,
                                     std::int32_t* trust)
    {
        auto& asked = *static_cast<Asked*>(user);
        EXPECT_EQ(*trust, 0);
        *trust = asked.answer;
        asked.host = host;
        asked.der.assign(der, der + size);
        asked.threads.push_back(std::this_thread::get_id());
    }

    std::int32_t answer = 1;
    std::string host;
    std::string der;
    std::vector<std::thread::id> threads;
};

/// A host that notes the lines of the log.
struct Lines
{
    static void VANTRY_CALL callback(void* user, std::int32_t level, const char* text)
    {
        auto& lines = *static_cast<Lines*>(user);
        lines.levels.insert(level);
        lines.texts += std::string(text) + '\n';
        lines.threads.insert(std::this_thread::get_id());
    }

    bool contain(const std::string& part) const { return texts.find(part) != std::string::npos; }

    std::set<std::int32_t> levels;
    std::string texts;
    std::set<std::thread::id> threads;
};

/// A host that notes the progress, and gives up from a number of bytes on.
struct Transferred
{
    static void VANTRY_CALL callback(void* user, std::uint64_t sent, std::uint64_t toSend,
                                     std::uint64_t received, std::uint64_t toReceive, std::int32_t* giveUp)
    {
        auto& transferred = *static_cast<Transferred*>(user);
        EXPECT_EQ(*giveUp, 0);
        EXPECT_LE(sent, toSend);
        EXPECT_TRUE(toReceive == 0 || received <= toReceive);
        transferred.sent = std::max(transferred.sent, sent);
        transferred.received = std::max(transferred.received, received);
        transferred.toReceive = std::max(transferred.toReceive, toReceive);
        transferred.threads.insert(std::this_thread::get_id());
        *giveUp = sent >= transferred.limit ? 1 : 0;
    }

    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t sent = 0;
    std::uint64_t received = 0;
    std::uint64_t toReceive = 0;
    std::set<std::thread::id> threads;
};

const std::vector<std::function<std::int32_t()>>& settings()
{
    static const std::vector<std::function<std::int32_t()>> all{
        [] { return vantry_set_endpoint("http://other/rest"); },
        [] { return vantry_set_credentials("a", "b"); },
        [] { return vantry_set_certificate_callback(nullptr, nullptr); },
        [] { return vantry_set_log_callback(nullptr, nullptr, VANTRY_LOG_INFO); },
        [] { return vantry_set_log_file(nullptr, VANTRY_LOG_INFO); },
        [] { return vantry_set_progress_callback(nullptr, nullptr); }};
    return all;
}

const std::vector<std::function<Result()>>& operations()
{
    static const std::vector<std::function<Result()>> all{createSession,
                                                          [] { return Result(vantry_close_session()); },
                                                          [] { return createTicket(); },
                                                          [] { return saveNote("1001"); },
                                                          [] { return saveAttachment("1", "content"); },
                                                          [] { return list(); }};
    return all;
}

int reentries = 0;

/// Everything that waits for its turn, called from within a callback.
void reenter()
{
    ++reentries;
    for (const auto& set : settings()) {
        EXPECT_EQ(set(), VANTRY_CALLED_FROM_CALLBACK);
    }
    for (const auto& operate : operations()) {
        expectStatus(operate(), VANTRY_CALLED_FROM_CALLBACK);
    }
}
} // namespace

TEST(CApi, HeaderAndLibraryAreOfOneVersion)
{
    EXPECT_EQ(vantry_version(), VANTRY_VERSION);
    EXPECT_STREQ(vantry_status_message(VANTRY_NOT_THE_LAST_NOTE),
                 "The attachment's note is not the tech note that was saved last.");
    EXPECT_STREQ(vantry_status_message(404), "");
}

class EachScheme : public CApiTest, public testing::WithParamInterface<bool>
{};

TEST_P(EachScheme, TheWholeJobIsDone)
{
    Asked asked;
    if (GetParam()) {
        useHttps();
        EXPECT_EQ(vantry_set_certificate_callback(&Asked::callback, &asked), VANTRY_OK);
    }
    sandbox.plan(Answer(200, R"([{"id":"A-1","shortSubject":"Größter","shortDetail":"a\u0000b"},{"id":7}])")
                     .to("/helpdesk/rest/Tickets"));
    const auto tickets = list();
    const auto session = createSession();
    const auto created = createTicket();
    const auto note = saveNote(vantry_result_ticket_id(created.get()));
    const auto file = saveAttachment(vantry_result_note_id(note.get()), "a \r\n\xFF", "z\xC3\xA4hler.txt");
    const Result closed(vantry_close_session());

    for (const auto* done : {&session, &closed, &tickets}) {
        expectStatus(*done, 200);
    }
    for (const auto* done : {&created, &note, &file}) {
        expectStatus(*done, 201);
    }
    // after five other operations
    ASSERT_EQ(vantry_result_ticket_count(tickets.get()), 2U);
    EXPECT_EQ(textsOf(tickets, 0), (std::vector<std::string>{"A-1", "Größter",
                                                             "a\xEF\xBF\xBD"
                                                             "b",
                                                             ""}));
    EXPECT_EQ(textsOf(tickets, 1), (std::vector<std::string>{"7", "", "", ""}));
    EXPECT_STREQ(vantry_result_note_id(created.get()), "");

    const auto requests = sandbox.requests();
    ASSERT_EQ(requests.size(), 6U);
    EXPECT_NE(requests[2].body.find(printer), std::string::npos) << requests[2].body;
    EXPECT_NE(requests[3].body.find(vantry_result_ticket_id(created.get())), std::string::npos);
    EXPECT_NE(requests[4].body.find("a \r\n\xFF"), std::string::npos);
    if (GetParam()) {
        EXPECT_EQ(asked.host, "localhost");
        EXPECT_EQ(asked.der, sandbox.get("/leaf.der"));
        EXPECT_EQ(asked.threads, std::vector<std::thread::id>(6, std::this_thread::get_id()));
    }
}

INSTANTIATE_TEST_SUITE_P(CApi, EachScheme, testing::Bool(),
                         [](const auto& info) { return info.param ? "Https" : "Http"; });

TEST_F(CApiTest, IdsAreTextThatCanBePassedOn)
{
    const std::vector<std::pair<std::string, std::string>> table{
        {R"({"id":77})", "77"},       {R"({"id":"A-1"})", "A-1"}, {R"({"id":"say \"\u20ac\""})", "say \"€\""},
        {R"({"id":"null"})", "null"}, {R"({"id":null})", ""},     {R"({"a":1})", ""}};
    for (const auto& [answer, id] : table) {
        SCOPED_TRACE(answer);
        sandbox.plan(Answer(201, answer));
        const auto created = createTicket();
        EXPECT_EQ(vantry_result_ticket_id(created.get()), id);
        sandbox.plan(Answer(201, answer));
        const auto note = saveNote(id.c_str());
        EXPECT_EQ(vantry_result_note_id(note.get()), id);
        if (!id.empty()) {
            sandbox.plan(Answer(201, "{}"));
        }
        expectStatus(saveAttachment(id.c_str(), "content"), id.empty() ? VANTRY_NOT_THE_LAST_NOTE : 201);
    }
}

TEST_F(CApiTest, AnAttachmentGoesToNoOtherNote)
{
    const auto first = saveNote();
    const auto* const firstId = vantry_result_note_id(first.get());
    sandbox.plan(Answer(500, "").to("/helpdesk/rest/TechNotes"));
    const auto failed = saveNote();
    expectStatus(saveAttachment(vantry_result_note_id(failed.get()), "content"), VANTRY_NOT_THE_LAST_NOTE);
    expectStatus(saveAttachment(firstId, "content"), VANTRY_NOT_THE_LAST_NOTE);
    const auto second = saveNote();
    expectStatus(saveAttachment(firstId, "content"), VANTRY_NOT_THE_LAST_NOTE);
    sandbox.forgetRequests();
    expectStatus(saveAttachment(vantry_result_note_id(second.get()), ""), 201);
    EXPECT_EQ(sandbox.requests().size(), 1U);
}

TEST_F(CApiTest, ArgumentsThatCannotBeAreRefused)
{
    const auto* const malformed = "\xC3(";
    const auto* const surrogate = "\xED\xA0\x80";
    for (const auto* text : {static_cast<const char*>(nullptr), malformed, surrogate}) {
        EXPECT_EQ(vantry_set_endpoint(text), VANTRY_INVALID_ARGUMENT);
        EXPECT_EQ(vantry_set_credentials(text, "secret"), VANTRY_INVALID_ARGUMENT);
        EXPECT_EQ(vantry_set_credentials("technician", text), VANTRY_INVALID_ARGUMENT);
        expectStatus(list(text), VANTRY_INVALID_ARGUMENT);
        expectStatus(createTicket(text), VANTRY_INVALID_ARGUMENT);
        expectStatus(saveNote(text), VANTRY_INVALID_ARGUMENT);
        expectStatus(saveAttachment(text, ""), VANTRY_INVALID_ARGUMENT);
        expectStatus(saveAttachment("1", "", text), VANTRY_INVALID_ARGUMENT);
    }
    EXPECT_EQ(vantry_set_log_file(malformed, VANTRY_LOG_INFO), VANTRY_INVALID_ARGUMENT);
    EXPECT_EQ(vantry_set_log_file("no such folder/log", VANTRY_LOG_INFO), VANTRY_NO_LOG_FILE);
    for (const auto level : {VANTRY_LOG_TRACE - 1, VANTRY_LOG_FATAL + 1}) {
        EXPECT_EQ(vantry_set_log_file(nullptr, level), VANTRY_INVALID_ARGUMENT);
        EXPECT_EQ(vantry_set_log_callback(&Lines::callback, nullptr, level), VANTRY_INVALID_ARGUMENT);
    }

    const vantry_new_ticket shortTicket{sizeof(shortTicket) - 1, "42", VANTRY_CLIENT, "", ""};
    const vantry_new_ticket unknownType{sizeof(unknownType), "42", 2, "", ""};
    for (const auto* ticket : {static_cast<const vantry_new_ticket*>(nullptr), &shortTicket, &unknownType}) {
        expectStatus(Result(vantry_create_ticket(ticket)), VANTRY_INVALID_ARGUMENT);
    }
    const vantry_tech_note longNote{sizeof(longNote) + 8, "1001", "", 0, 0};
    const vantry_tech_note negative{sizeof(negative), "1001", "", 0, -1};
    const vantry_tech_note two{sizeof(two), "1001", "", 0, 2};
    for (const auto* note : {static_cast<const vantry_tech_note*>(nullptr), &longNote, &negative, &two}) {
        expectStatus(Result(vantry_save_tech_note(note)), VANTRY_INVALID_ARGUMENT);
    }
    const vantry_attachment noSize{0, "1", "name", "", 0};
    const vantry_attachment noData{sizeof(noData), "1", "name", nullptr, 1};
    for (const auto* file : {static_cast<const vantry_attachment*>(nullptr), &noSize, &noData}) {
        expectStatus(Result(vantry_save_attachment(file)), VANTRY_INVALID_ARGUMENT);
    }
    expectStatus(Result(vantry_request_ticket_list("42", -1)), VANTRY_INVALID_ARGUMENT);
    EXPECT_TRUE(sandbox.requests().empty());

    const Result none;
    expectStatus(none, VANTRY_INVALID_ARGUMENT);
    EXPECT_EQ(vantry_result_ticket_count(nullptr), 0U);
    sandbox.plan(Answer(200, R"([{"id":1}])"));
    const auto tickets = list();
    vantry_ticket wrongSize{};
    vantry_ticket ticket{sizeof(ticket), nullptr, nullptr, nullptr, nullptr};
    EXPECT_EQ(vantry_result_ticket(tickets.get(), 0, nullptr), VANTRY_INVALID_ARGUMENT);
    EXPECT_EQ(vantry_result_ticket(tickets.get(), 0, &wrongSize), VANTRY_INVALID_ARGUMENT);
    EXPECT_EQ(vantry_result_ticket(tickets.get(), 1, &ticket), VANTRY_INVALID_ARGUMENT);
    EXPECT_EQ(ticket.id, nullptr);
}

TEST_F(CApiTest, FaultsOfTheServerAreStatuses)
{
    const auto json = [](const std::string& body, std::size_t length) {
        return Answer::bytes("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                             std::to_string(length) + "\r\n\r\n" + body);
    };
    const std::vector<std::pair<Answer, int>> table{
        {Answer::bytes(""), 600},
        {Answer::bytes("HTTP/1.1 20"), 600},
        {Answer::bytes("nonsense\r\n\r\n"), 600},
        {Answer::bytes("HTTP/1.1 500 \r\nContent-Length: 0\r\n\r\n"), 500}, // has no phrase
        {json("[", 100), 600},
        {json("[}", 2), 600},
        {Answer(200, "broken", "text/plain"), 600},
        {Answer(200, R"([{"id":1},{"id":2,"shortSubject":7}])"), 600}, // leaves the C++ function
        {Answer(201, R"([{"id":1}])"), 201},
        {Answer(302).header("Location", "/elsewhere"), 302},
        {Answer(404, R"([{"id":1}])"), 404},
        {Answer(503, "busy", "text/html"), 600}};
    for (const auto& [answer, status] : table) {
        SCOPED_TRACE(answer.plan().dump());
        sandbox.plan(answer);
        const auto tickets = list();
        EXPECT_EQ(vantry_result_status(tickets.get()), status);
        EXPECT_EQ(vantry_result_succeeded(tickets.get()), 0);
        EXPECT_STRNE(vantry_result_message(tickets.get()), "");
        EXPECT_EQ(vantry_result_ticket_count(tickets.get()), 0U);
    }
    sandbox.planConnection({{"fault", "reset"}, {"secure", false}});
    expectStatus(createTicket(), 600);
    const auto note = saveNote();
    sandbox.plan(Answer::bytes("HTTP/1.1 400 \"No\" way\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_STREQ(vantry_result_message(saveAttachment(vantry_result_note_id(note.get()), "content").get()),
                 "\"No\" way");
    sandbox.plan(Answer(200, R"({"reason":"Too \"big\""})"));
    const auto refused = saveAttachment(vantry_result_note_id(note.get()), "content");
    expectStatus(refused, VANTRY_UPLOAD_REFUSED);
    EXPECT_STREQ(vantry_result_message(refused.get()), "Too \"big\"");
    expectStatus(createTicket(), 201);
}

TEST_F(CApiTest, FaultsOfTheHostAreStatuses)
{
    expectStatus(list("4 2"), 600); // leaves the C++ function
    const auto note = saveNote();
    expectStatus(saveAttachment(vantry_result_note_id(note.get()), "", "a\nb"), 600);
    for (const auto* endpoint : {"", "nonsense", "http://localhost:65616/rest", "http://localhost:1/rest"}) {
        EXPECT_EQ(vantry_set_endpoint(endpoint), VANTRY_OK);
        expectStatus(createSession(), 600);
    }
    EXPECT_EQ(vantry_set_endpoint(narrow(sandbox.http).c_str()), VANTRY_OK);
    expectStatus(createSession(), 200);
}

TEST_F(CApiTest, OnlyTheAnswerOneTrustsACertificate)
{
    useHttps();
    Asked asked;
    EXPECT_EQ(vantry_set_certificate_callback(&Asked::callback, &asked), VANTRY_OK);
    for (const auto answer : {0, -1, 2}) {
        asked.answer = answer;
        expectStatus(createTicket(), VANTRY_CERTIFICATE_REFUSED);
    }
    EXPECT_TRUE(sandbox.requests().empty());
    EXPECT_EQ(vantry_set_certificate_callback(nullptr, nullptr), VANTRY_OK);
    expectStatus(createTicket(), 201);
}

TEST_F(CApiTest, MoreMemoryThanThereIsIsAStatus)
{
    if (isSanitized) {
        GTEST_SKIP() << "a sanitizer ends the process itself";
    }
    const auto note = saveNote();
    const char byte = 0;
    const auto most = std::numeric_limits<std::size_t>::max();
    for (const auto size : {most, most / 4, most / 65536}) {
        const vantry_attachment file{sizeof(file), vantry_result_note_id(note.get()), "name", &byte, size};
        const Result result(vantry_save_attachment(&file));
        expectStatus(result, VANTRY_OUT_OF_MEMORY);
    }
    expectStatus(saveAttachment(vantry_result_note_id(note.get()), "content"), 201);
}

TEST_F(CApiTest, CallsOfManyThreadsTakeTurns)
{
    constexpr std::size_t threadCount = 8;
    constexpr std::size_t rounds = 15;
    std::vector<std::string> ids(threadCount * rounds);
    std::vector<std::thread> threads;
    std::atomic<int> uploaded = 0;
    expectStatus(createSession(), 200);
    threads.reserve(threadCount);
    for (std::size_t number = 0; number < threadCount; ++number) {
        threads.emplace_back([&, number] {
            for (std::size_t round = 0; round < rounds; ++round) {
                EXPECT_EQ(setCredentials(), VANTRY_OK);
                const auto created = createTicket();
                ids[number * rounds + round] = vantry_result_ticket_id(created.get());
                const auto note = saveNote(vantry_result_ticket_id(created.get()));
                const auto file = saveAttachment(vantry_result_note_id(note.get()), "content");
                const auto status = vantry_result_status(file.get());
                EXPECT_TRUE(status == 201 || status == VANTRY_NOT_THE_LAST_NOTE) << status;
                uploaded += status == 201 ? 1 : 0;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const std::set<std::string> different(ids.begin(), ids.end());
    EXPECT_EQ(different.size(), ids.size());
    EXPECT_EQ(different.count(""), 0U);
    const auto requests = sandbox.requests();
    EXPECT_EQ(requests.size(), 1 + 2 * ids.size() + static_cast<std::size_t>(uploaded));
}

TEST_F(CApiTest, CallsFromWithinACallbackAnswerAtOnce)
{
    useHttps();
    reentries = 0;
    const auto ask = [](void* /*user*/, const char* /*host*/, const std::uint8_t* /*der*/,
                        std::size_t /*size*/, std::int32_t* trust) {
        reenter();
        *trust = 1;
    };
    const auto log = [](void* /*user*/, std::int32_t /*level*/, const char* /*text*/) { reenter(); };
    const auto progress = [](void* /*user*/, std::uint64_t /*sent*/, std::uint64_t /*toSend*/,
                             std::uint64_t /*received*/, std::uint64_t /*toReceive*/,
                             std::int32_t* /*giveUp*/) { reenter(); };
    EXPECT_EQ(vantry_set_certificate_callback(ask, nullptr), VANTRY_OK);
    expectStatus(createTicket(), 201);
    EXPECT_EQ(reentries, 1);
    EXPECT_EQ(vantry_set_log_callback(log, nullptr, VANTRY_LOG_INFO), VANTRY_OK);
    expectStatus(createTicket(), 201);
    EXPECT_GT(std::exchange(reentries, 0), 5);
    EXPECT_EQ(vantry_set_log_callback(nullptr, nullptr, VANTRY_LOG_INFO), VANTRY_OK);
    EXPECT_EQ(vantry_set_certificate_callback(nullptr, nullptr), VANTRY_OK);
    EXPECT_EQ(vantry_set_progress_callback(progress, nullptr), VANTRY_OK);
    expectStatus(createTicket(), 201);
    EXPECT_GT(reentries, 0);
    EXPECT_EQ(sandbox.requests().size(), 3U);
}

TEST_F(CApiTest, ATransferTellsItsProgressAndCanBeGivenUp)
{
    constexpr std::size_t size = 8'000'000;
    const std::string content(size, 'x');
    Transferred transferred;
    const auto note = saveNote();
    EXPECT_EQ(vantry_set_progress_callback(&Transferred::callback, &transferred), VANTRY_OK);
    expectStatus(saveAttachment(vantry_result_note_id(note.get()), content), 201);
    EXPECT_GE(transferred.sent, size);
    EXPECT_GT(transferred.received, 0U);
    EXPECT_EQ(transferred.received, transferred.toReceive);
    EXPECT_EQ(transferred.threads, std::set{std::this_thread::get_id()});

    transferred.limit = 0;
    sandbox.plan(Answer(201, "{}").after(3'000)); // it would be time to look
    const auto givenUp = saveAttachment(vantry_result_note_id(note.get()), content);
    expectStatus(givenUp, VANTRY_GIVEN_UP);
    EXPECT_STREQ(vantry_result_message(givenUp.get()), vantry_status_message(VANTRY_GIVEN_UP));
    EXPECT_EQ(vantry_set_progress_callback(nullptr, nullptr), VANTRY_OK);
    expectStatus(saveAttachment(vantry_result_note_id(note.get()), content), 201);
}

TEST_F(CApiTest, TheCertificatesCheckCanBeGivenUpToo)
{
    useHttps();
    Transferred transferred;
    transferred.limit = 0;
    EXPECT_EQ(vantry_set_progress_callback(&Transferred::callback, &transferred), VANTRY_OK);
    sandbox.plan(Answer(200).to("/").held());
    expectStatus(createSession(), VANTRY_GIVEN_UP);
    EXPECT_TRUE(sandbox.requests().empty());
    sandbox.release();
    EXPECT_EQ(vantry_set_progress_callback(nullptr, nullptr), VANTRY_OK);
}

TEST_F(CApiTest, TheLogGoesWhereTheHostWantsIt)
{
    const auto path = std::filesystem::temp_directory_path() /
                      std::filesystem::u8path(
                          "vantry-\xC3\xA4-" +
                          std::to_string(std::hash<std::thread::id>()(std::this_thread::get_id())) + ".log");
    Lines lines;
    std::ofstream(path) << "of before\n";
    EXPECT_EQ(vantry_set_log_callback(&Lines::callback, &lines, VANTRY_LOG_TRACE), VANTRY_OK);
    EXPECT_EQ(vantry_set_log_file(path.u8string().c_str(), VANTRY_LOG_INFO), VANTRY_OK);
    expectStatus(createTicket(), 201);
    EXPECT_TRUE(lines.contain(printer));
    EXPECT_TRUE(lines.contain("HTTP Status code: 201")) << "what another thread writes is missing";
    EXPECT_EQ(lines.threads, std::set{std::this_thread::get_id()});
    EXPECT_EQ(lines.levels, (std::set<std::int32_t>{VANTRY_LOG_TRACE, VANTRY_LOG_DEBUG, VANTRY_LOG_INFO}));
    EXPECT_FALSE(lines.contain("password=" + narrow(sandbox.password)));

    lines = {};
    EXPECT_EQ(vantry_set_log_callback(&Lines::callback, &lines, VANTRY_LOG_FATAL), VANTRY_OK);
    EXPECT_EQ(vantry_set_log_file(nullptr, VANTRY_LOG_INFO), VANTRY_OK);
    EXPECT_EQ(vantry_set_endpoint("http://localhost:1/rest"), VANTRY_OK);
    expectStatus(createTicket("not in the file"), 600);
    EXPECT_EQ(lines.levels, std::set<std::int32_t>{VANTRY_LOG_FATAL});

    std::ifstream file(path, std::ios::binary);
    const std::string written(std::istreambuf_iterator<char>(file), {});
    file.close();
    std::filesystem::remove(path);
    EXPECT_EQ(written.find("of before"), 0U) << written;
    EXPECT_NE(written.find(printer), std::string::npos) << written;
    EXPECT_EQ(written.find("TRACE"), std::string::npos);
    EXPECT_EQ(written.find("not in the file"), std::string::npos);
}

/// Also run from a folder with a configuration of log4cxx.
TEST_F(CApiTest, ItIsSilentByDefault)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    expectStatus(createTicket(), 201);
    EXPECT_EQ(vantry_set_endpoint("http://localhost:1/rest"), VANTRY_OK);
    expectStatus(createTicket(), 600);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

/// Some languages want a signal of the processor where others want an infinite number. The call before which
/// the exceptions are unmasked is the process's first, which starts the library's threads.
TEST_F(CApiTest, TheFloatingPointStateIsTheLibrarysOwn)
{
    constexpr unsigned masked = _MM_MASK_INEXACT | _MM_MASK_UNDERFLOW | _MM_MASK_DENORM;
    const auto before = _MM_GET_EXCEPTION_MASK();
    static unsigned seen = 0;
    const auto log = [](void* /*user*/, std::int32_t /*level*/, const char* /*text*/) {
        seen = _MM_GET_EXCEPTION_MASK();
    };
    sandbox.plan(Answer(201, R"({"id":1e400})"));
    _MM_SET_EXCEPTION_MASK(masked);
    EXPECT_EQ(vantry_set_log_callback(log, nullptr, VANTRY_LOG_INFO), VANTRY_OK);
    const auto created = createTicket();
    const auto after = _MM_GET_EXCEPTION_MASK();
    _MM_SET_EXCEPTION_MASK(before);
    EXPECT_EQ(after, masked);
    EXPECT_EQ(seen, masked);
    EXPECT_NE(vantry_result_status(created.get()), 0);
}
