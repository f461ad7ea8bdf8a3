// The desktop host, used through its controls, and what of it reaches the server.
#include "desktop/DesktopHost.h"
#include "platform/PlatformSupport.h"
#include "support/Sandbox.h"
#include "support/Text.h"

#include "resource.h"

#include <gtest/gtest.h>

#include <commctrl.h>
#include <wincrypt.h>

#include <fstream>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace
{
constexpr int messageText = 0xFFFF; // of a message box
constexpr const wchar_t* sessionStatus = L"Tickets of client 42: 0";
constexpr const wchar_t* noteStatus = L"The note on ticket 1001 is saved. Files go to this note.";

class Desktop : public testing::Test
{
protected:
    Desktop() : folder(std::filesystem::temp_directory_path() / L"vantry desktop tëst")
    {
        std::filesystem::create_directory(folder);
    }
    ~Desktop() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    void start(const std::wstring& endPoint, const std::wstring& password)
    {
        host.emplace(L"--endpoint " + endPoint + L" --user " + sandbox.user + L" --password \"" + password +
                     L"\" --client 42");
    }
    void startOnHttp() { start(sandbox.http, sandbox.password); }
    void startOnHttps()
    {
        trustAuthority(sandbox.authorityFile, sandbox.get("/ca.der"));
        start(sandbox.https, sandbox.password);
    }

    void openSession()
    {
        host->window().click(IDC_OPEN_SESSION);
        host->waitForStatus(sessionStatus);
    }

    void startWithSession()
    {
        startOnHttp();
        openSession();
    }

    /// The first one.
    void createTicket(const std::wstring& subject)
    {
        host->window().click(IDC_NEW_TICKET);
        const auto dialog = host->dialog();
        EXPECT_FALSE(dialog.isEnabled(IDOK)) << "a ticket needs a subject";
        dialog.enter(IDC_TICKET_SUBJECT, subject);
        dialog.enter(IDC_TICKET_DETAIL, L"It blinks.\r\nTwice.");
        dialog.closeBy(IDOK);
        host->waitForStatus(L"Tickets of client 42: 1");
    }

    void addNote(const std::wstring& text, bool isVisible = false)
    {
        host->window().click(IDC_ADD_NOTE);
        const auto dialog = host->dialog();
        dialog.enter(IDC_NOTE_TEXT, text);
        dialog.enter(IDC_WORK_TIME, L"25");
        if (isVisible) {
            dialog.click(IDC_VISIBLE);
        }
        dialog.closeBy(IDOK);
    }

    void startWithNote()
    {
        startWithSession();
        createTicket(L"Printer");
        addNote(L"Seen", true);
        host->waitForStatus(noteStatus);
    }

    /// The next message tells all of this; it is closed.
    void expectMessage(const std::vector<std::string>& parts)
    {
        const auto dialog = host->dialog();
        const auto text = narrow(dialog.text(messageText));
        for (const auto& part : parts) {
            EXPECT_NE(text.find(part), std::string::npos) << text;
        }
        dialog.closeBy(IDOK);
    }

    std::filesystem::path makeFile(const std::wstring& name, const std::string& content) const
    {
        std::ofstream(folder / name, std::ios::binary) << content;
        return folder / name;
    }

    std::string stateOf(const std::string& member) const { return sandbox.state().at(member).dump(); }

    void endNormally()
    {
        host->window().close();
        EXPECT_EQ(host->exitCode(), 0U);
    }

    Sandbox sandbox;
    std::filesystem::path folder;
    std::optional<DesktopHost> host;
};

std::wstring fingerprint(const std::string& certificate)
{
    std::array<BYTE, 32> digest{};
    auto size = static_cast<DWORD>(digest.size());
    CryptHashCertificate2(L"SHA256", 0, nullptr, reinterpret_cast<const BYTE*>(certificate.data()),
                          static_cast<DWORD>(certificate.size()), digest.data(), &size);
    std::wstring text;
    for (std::size_t i = 0; i < digest.size(); ++i) {
        std::array<wchar_t, 8> byte{};
        swprintf(byte.data(), byte.size(), L"%ls%02X", i == 0 ? L"" : i == 16 ? L":\r\n" : L":", digest[i]);
        text += byte.data();
    }
    return text;
}
} // namespace

TEST_F(Desktop, DoesAWholeJobOverTls)
{
    startOnHttps();
    host->window().click(IDC_OPEN_SESSION);
    const auto question = host->dialog();
    EXPECT_NE(sandbox.https.find(L"//localhost:"), std::wstring::npos);
    EXPECT_EQ(question.text(IDC_SERVER).find(L"The server localhost:"), 0U);
    EXPECT_EQ(narrow(question.text(IDC_SUBJECT)), "CN=localhost");
    EXPECT_EQ(narrow(question.text(IDC_ISSUER)).substr(0, 20), "CN=Vantry Sandbox CA");
    EXPECT_EQ(question.text(IDC_FINGERPRINT), fingerprint(sandbox.get("/leaf.der")));
    EXPECT_TRUE(sandbox.requests().empty()) << "sent before the answer";
    EXPECT_TRUE(host->isBusy());
    question.closeBy(IDOK); // holds from now on: any further question would leave what follows waiting
    host->waitForStatus(sessionStatus);

    createTicket(L"Größter Drucker");
    const std::vector<std::wstring> row{L"1001", L"Größter Drucker", L"Client 42", L"It blinks.\r\nTwice."};
    EXPECT_EQ(host->tickets(), std::vector<std::vector<std::wstring>>{row});
    addNote(L"Seen on site.\r\nPaper ordered.");
    host->waitForStatus(noteStatus);
    const std::string content("\0\r\n\xFF", 4);
    host->drop({makeFile(L"Prüfbericht.bin", content), makeFile(L"empty.txt", "")});
    host->waitForStatus(L"The file empty.txt is attached to the note on ticket 1001.");
    EXPECT_NE(host->window().text(IDC_LOG).find(L"INFO   Saving attachment.\r\n"), std::wstring::npos);
    host->window().click(IDC_CLOSE_SESSION);
    host->waitForStatus(L"The session is closed.");

    EXPECT_EQ(stateOf("sessions"), "[]");
    EXPECT_EQ(stateOf("tickets"),
              R"([{"detail":"It blinks.\r\nTwice.","entityId":"42","entityType":"Client",)"
              R"("id":1001,"subject":"Größter Drucker"}])");
    EXPECT_EQ(stateOf("techNotes"),
              R"([{"id":2001,"isHidden":true,"noteText":"Seen on site.\r\nPaper ordered.",)"
              R"("ticketId":1001,"workTime":"25"}])");
    EXPECT_EQ(sandbox.get("/attachments/3001"), content);
    EXPECT_EQ(sandbox.get("/attachments/3002"), "");
    endNormally();
}

TEST_F(Desktop, ARefusedCertificateIsToldAndNothingIsSent)
{
    startOnHttps();
    host->window().click(IDC_OPEN_SESSION);
    host->dialog().closeBy(IDCANCEL); // the question about the certificate
    expectMessage({"The session could not be opened.", "Status 601: "});
    EXPECT_TRUE(sandbox.requests().empty());
    EXPECT_TRUE(host->window().isEnabled(IDC_OPEN_SESSION));
    EXPECT_FALSE(host->window().isEnabled(IDC_NEW_TICKET));
    endNormally();
}

TEST_F(Desktop, AWrongPasswordIsToldAndCanBeCorrected)
{
    start(sandbox.http, L"not " + sandbox.password);
    host->window().click(IDC_OPEN_SESSION);
    expectMessage({"does not accept the user name and password", "Status 401: Unauthorized"});
    host->window().enter(IDC_PASSWORD, sandbox.password);
    openSession();
}

TEST_F(Desktop, AProxysPageAndAServerThatIsGoneAreToldAndTheSessionCanBeGivenUp)
{
    startOnHttp();
    sandbox.plan(Answer(502, "<html>Bad gateway</html>", "text/html"));
    host->window().click(IDC_OPEN_SESSION);
    expectMessage({"a proxy's page or another website"});
    openSession();
    sandbox.plan(Answer::bytes("HTT").to("/helpdesk/rest/Tickets"));
    host->window().click(IDC_SHOW_TICKETS);
    expectMessage({"Status 600: "});
    sandbox.plan(Answer::bytes("HTT").to("/helpdesk/rest/Session"));
    host->window().click(IDC_CLOSE_SESSION);
    expectMessage({"Status 600: "});
    host->window().enter(IDC_ENDPOINT, L"http://127.0.0.1:1/helpdesk/rest"); // where nobody listens
    host->window().click(IDC_OPEN_SESSION);
    expectMessage({"Status 600: "});
    endNormally();
}

TEST_F(Desktop, AnIdThatNoAddressCanCarryIsKeptFromTheLibrary)
{
    startWithSession();
    for (const auto* id : {L"4 2", L"4\"2", L"4ü2", L""}) {
        host->window().enter(IDC_ENTITY_ID, id);
        host->window().click(IDC_SHOW_TICKETS);
        expectMessage({"The id of a client or asset"});
    }
    EXPECT_EQ(sandbox.requests().size(), 2U) << "more than the session and its first list";
    endNormally();
}

TEST_F(Desktop, AFileThatCannotBeReadEndsTheRow)
{
    startWithNote();
    host->drop({makeFile(L"first.txt", "1"), folder, makeFile(L"last.txt", "3")});
    expectMessage({"Not started: it is not a file"});
    EXPECT_EQ(sandbox.state().at("attachments").size(), 1U);
    EXPECT_TRUE(host->window().isEnabled(IDC_ATTACH_FILE));
    endNormally();
}

TEST_F(Desktop, NothingElseCanBeStartedWhileAnOperationRuns)
{
    startWithSession();
    sandbox.forgetRequests();
    sandbox.plan(Answer(200, "[]").held());
    host->window().click(IDC_SHOW_TICKETS);
    waitUntil("the operation to run", [&] { return host->isBusy(); });
    for (const int command : {IDC_OPEN_SESSION, IDC_CLOSE_SESSION, IDC_SHOW_TICKETS, IDC_NEW_TICKET,
                              IDC_ADD_NOTE, IDC_ATTACH_FILE, IDC_ENDPOINT, IDC_ENTITY_ID}) {
        EXPECT_FALSE(host->window().isEnabled(command)) << command;
    }
    host->pressKey(VK_F5);
    host->window().choose(IDC_SHOW_TICKETS);
    sandbox.release();
    host->waitForStatus(sessionStatus);
    EXPECT_EQ(sandbox.requests().size(), 1U);
    host->pressKey(VK_F5);
    waitUntil("the second list", [&] { return sandbox.requests().size() == 2; });
}

TEST_F(Desktop, ClosingDuringAnOperationWaitsForItAndClosesTheSession)
{
    startOnHttp();
    sandbox.plan(Answer(200, R"({"type":"Session","sessionKey":"slow"})").held());
    host->window().click(IDC_OPEN_SESSION);
    waitUntil("the operation to run", [&] { return sandbox.requests().size() == 1; });
    host->window().close();
    waitUntil("the explanation", [&] {
        return host->window().text(IDC_STATUS_BAR) == L"Waiting for the server's answer, then closing…";
    });
    host->window().close(); // an impatient person
    sandbox.release();
    EXPECT_EQ(host->exitCode(), 0U);
    ASSERT_EQ(sandbox.requests().size(), 2U) << "the session was to be closed, and nothing else";
    EXPECT_EQ(sandbox.requests()[1].method, "DELETE");
}

TEST_F(Desktop, ClosingDuringTheCertificateQuestionRefusesIt)
{
    startOnHttps();
    host->window().click(IDC_OPEN_SESSION);
    const auto question = host->dialog();
    endNormally();
    EXPECT_FALSE(question.exists());
    EXPECT_TRUE(sandbox.requests().empty());
}

TEST_F(Desktop, NoFileGoesToTheNoteBeforeOneThatFailed)
{
    startWithNote();
    ASSERT_TRUE(host->window().isEnabled(IDC_ATTACH_FILE));
    sandbox.plan(Answer(500, "{}").to("/helpdesk/rest/TechNotes"));
    addNote(L"Refilled");
    expectMessage({"The note could not be saved."});
    EXPECT_FALSE(host->window().isEnabled(IDC_ATTACH_FILE));
    host->drop({makeFile(L"photo.txt", "1")});
    endNormally();
    EXPECT_EQ(sandbox.state().at("techNotes").size(), 1U);
    EXPECT_EQ(sandbox.state().at("techNotes")[0].at("isHidden"), false);
    EXPECT_EQ(stateOf("attachments"), "[]");
}

TEST_F(Desktop, WarnsOfAnEndpointThatIsNotSecure)
{
    startOnHttp();
    for (const auto& [endPoint, warning] :
         std::map<std::wstring, std::string>{{L"https://desk.example.com", ""},
                                             {L"HTTP://desk.example.com", "Not encrypted"},
                                             {L"Https://desk.example.com", "Write https in small letters"},
                                             {L"", ""}}) {
        host->window().enter(IDC_ENDPOINT, endPoint);
        const auto hint = narrow(host->window().text(IDC_ENDPOINT_HINT));
        EXPECT_EQ(hint.substr(0, warning.size()), warning) << narrow(endPoint);
        EXPECT_EQ(hint.empty(), warning.empty()) << narrow(endPoint);
    }
}

TEST_F(Desktop, ClosesTheSessionAndRemembersServerUserAndColumnsButNoPassword)
{
    startWithSession();
    SendMessageW(host->window().control(IDC_TICKETS), LVM_SETCOLUMNWIDTH, 1, 321);
    endNormally();
    EXPECT_EQ(stateOf("sessions"), "[]");
    host.emplace(L"");
    EXPECT_EQ(host->window().text(IDC_ENDPOINT), sandbox.http);
    EXPECT_EQ(host->window().text(IDC_USER), sandbox.user);
    EXPECT_EQ(host->window().text(IDC_PASSWORD), L"");
    EXPECT_EQ(SendMessageW(host->window().control(IDC_TICKETS), LVM_GETCOLUMNWIDTH, 1, 0), 321);
    endNormally();
}

TEST_F(Desktop, SortsTheTicketsAndKeepsTheOrder)
{
    startWithSession();
    const std::string tickets = R"([{"id":1000,"shortSubject":"b","shortDetail":"z","displayClient":"C"},)"
                                R"({"id":999,"shortSubject":"a","shortDetail":"y","displayClient":"D"},)"
                                R"({"id":1001,"shortSubject":"c","shortDetail":"x","displayClient":"B"}])";
    const auto order = [&] {
        std::wstring ids;
        for (const auto& row : host->tickets()) {
            ids += row[0] + L' ';
        }
        return ids;
    };
    sandbox.plan(Answer(200, tickets));
    for (const auto& [command, expected] : {std::pair{IDC_SHOW_TICKETS, L"999 1000 1001 "},
                                            {IDC_SORT_TICKET, L"1001 1000 999 "},
                                            {IDC_SORT_SUBJECT, L"999 1000 1001 "},
                                            {IDC_SORT_CLIENT, L"1001 1000 999 "},
                                            {IDC_SORT_CLIENT, L"999 1000 1001 "},
                                            {IDC_SORT_DETAIL, L"1001 999 1000 "}}) {
        host->window().choose(command);
        waitUntil("the order " + narrow(expected), [&, next = expected] { return order() == next; });
    }
    sandbox.plan(Answer(200, tickets));
    host->window().click(IDC_SHOW_TICKETS);
    host->waitForStatus(L"Tickets of client 42: 3");
    EXPECT_EQ(order(), L"1001 999 1000 ");
}

TEST_F(Desktop, ControlsStayInTheWindowAndApart)
{
    startOnHttp();
    const auto expectOrder = [&](const char* situation) {
        SCOPED_TRACE(situation);
        HWND const window = host->window().handle();
        SendMessageW(window, WM_NULL, 0, 0); // answered when all are in their places
        RECT client{};
        GetClientRect(window, &client);
        std::vector<RECT> places;
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            if (IsWindowVisible(child) == FALSE) {
                continue;
            }
            RECT place{};
            RECT common{};
            GetWindowRect(child, &place);
            MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
            UnionRect(&common, &client, &place);
            EXPECT_TRUE(EqualRect(&common, &client)) << GetDlgCtrlID(child) << " is outside";
            for (const RECT& other : places) {
                EXPECT_FALSE(IntersectRect(&common, &place, &other)) << GetDlgCtrlID(child) << " overlaps";
            }
            places.push_back(place);
        }
        EXPECT_GT(places.size(), 15U);
    };
    const auto listHeight = [&] {
        RECT list{};
        GetWindowRect(host->window().control(IDC_TICKETS), &list);
        return list.bottom - list.top;
    };
    EXPECT_FALSE(host->window().isVisible(IDC_LOG));
    expectOrder("at the start");
    const auto whole = listHeight();
    host->window().choose(IDC_SHOW_LOG);
    waitUntil("the log", [&] { return host->window().isVisible(IDC_LOG) && listHeight() < whole; });
    expectOrder("with the log");
    SetWindowPos(host->window().handle(), nullptr, 0, 0, 1500, 1100, SWP_NOMOVE | SWP_NOZORDER);
    waitUntil("the list to grow", [&] { return listHeight() > whole; });
    expectOrder("large");
    SetWindowPos(host->window().handle(), nullptr, 0, 0, 10, 10, SWP_NOMOVE | SWP_NOZORDER);
    waitUntil("the list to shrink", [&] { return listHeight() < whole; });
    expectOrder("small");
}

TEST_F(Desktop, TheKeyboardReachesEverything)
{
    startOnHttp();
    waitUntil("the first field to have the focus", [&] { return host->focus() == IDC_ENDPOINT; });
    host->pressKey(VK_RETURN); // there: the default button
    host->waitForStatus(sessionStatus);
    createTicket(L"Printer");
    // Each stop with what Enter does there, which one button shows.
    const std::vector<std::pair<int, int>> expected{{IDC_NEW_TICKET, IDC_NEW_TICKET},
                                                    {IDC_ADD_NOTE, IDC_ADD_NOTE},
                                                    {IDC_CLOSE_SESSION, IDC_CLOSE_SESSION},
                                                    {IDC_CLIENT, IDC_SHOW_TICKETS},
                                                    {IDC_ENTITY_ID, IDC_SHOW_TICKETS},
                                                    {IDC_SHOW_TICKETS, IDC_SHOW_TICKETS},
                                                    {IDC_TICKETS, IDC_ADD_NOTE}};
    waitUntil("the focus to come back", [&] { return host->focus() == expected[0].first; });
    for (const auto& [stop, button] : expected) {
        waitUntil("the focus on " + std::to_string(stop), [&, id = stop] { return host->focus() == id; });
        EXPECT_EQ(host->defaultButtons(), std::vector<int>{button}) << "on " << stop;
        host->pressKey(VK_TAB);
    }
    waitUntil("the focus to be where it began", [&] { return host->focus() == expected[0].first; });
}
