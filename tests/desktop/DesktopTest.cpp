// The desktop host, used through its controls, and what of it reaches the server.
#include "desktop/DesktopHost.h"
#include "platform/PlatformSupport.h"
#include "support/Sandbox.h"
#include "support/Text.h"

#include "resource.h"

#include <gtest/gtest.h>

#include <wincrypt.h>

#include <fstream>
#include <optional>

namespace
{
constexpr int messageText = 0xFFFF; // of a message box
constexpr const wchar_t* sessionStatus = L"Tickets of client 42: 0";

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

    void createTicket(const std::wstring& subject)
    {
        host->window().click(IDC_NEW_TICKET);
        const auto dialog = host->dialog();
        EXPECT_FALSE(dialog.isEnabled(IDOK)) << "a ticket needs a subject";
        dialog.enter(IDC_TICKET_SUBJECT, subject);
        dialog.enter(IDC_TICKET_DETAIL, L"It blinks.\r\nTwice.");
        dialog.closeBy(IDOK);
    }

    void addNote(const std::wstring& text)
    {
        host->window().click(IDC_ADD_NOTE);
        const auto dialog = host->dialog();
        dialog.enter(IDC_NOTE_TEXT, text);
        dialog.enter(IDC_WORK_TIME, L"25");
        dialog.click(IDC_VISIBLE);
        dialog.closeBy(IDOK);
    }

    /// What the next message tells, which is then closed.
    std::string nextMessage()
    {
        const auto dialog = host->dialog();
        const auto text = narrow(dialog.text(messageText));
        dialog.closeBy(IDOK);
        return text;
    }

    /// The next dialog is the question about the certificate.
    void answerCertificate(int button) { host->dialog().closeBy(button); }

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
    EXPECT_EQ(narrow(question.text(IDC_SUBJECT)), "CN=localhost");
    EXPECT_EQ(narrow(question.text(IDC_ISSUER)).substr(0, 20), "CN=Vantry Sandbox CA");
    EXPECT_EQ(question.text(IDC_FINGERPRINT), fingerprint(sandbox.get("/leaf.der")));
    EXPECT_TRUE(sandbox.requests().empty()) << "sent before the answer";
    EXPECT_TRUE(host->isBusy());
    answerCertificate(IDOK); // remembered: any further question would leave what follows waiting
    host->waitForStatus(sessionStatus);

    createTicket(L"Größter Drucker");
    host->waitForStatus(L"Tickets of client 42: 1");
    const std::vector<std::wstring> row{L"1001", L"Größter Drucker", L"It blinks.\r\nTwice.", L"Client 42"};
    EXPECT_EQ(host->tickets(), std::vector<std::vector<std::wstring>>{row});
    addNote(L"Seen on site.\r\nPaper ordered.");
    host->waitForStatus(L"The note on ticket 1001 is saved. Files go to this note.");
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

TEST_F(Desktop, AsksAgainAboutACertificateThatIsNotToBeRemembered)
{
    startOnHttps();
    host->window().click(IDC_OPEN_SESSION);
    host->dialog().click(IDC_REMEMBER);
    answerCertificate(IDOK);
    answerCertificate(IDCANCEL); // for the list
    EXPECT_NE(nextMessage().find("Status 601: "), std::string::npos);
    ASSERT_EQ(sandbox.requests().size(), 1U);
    EXPECT_EQ(sandbox.requests()[0].target.substr(0, 22), "/helpdesk/rest/Session");
}

TEST_F(Desktop, ARefusedCertificateIsToldAndNothingIsSent)
{
    startOnHttps();
    host->window().click(IDC_OPEN_SESSION);
    answerCertificate(IDCANCEL);
    const auto message = nextMessage();
    EXPECT_EQ(message.find("The session could not be opened."), 0U) << message;
    EXPECT_NE(message.find("Status 601: "), std::string::npos) << message;
    EXPECT_TRUE(sandbox.requests().empty());
    EXPECT_TRUE(host->window().isEnabled(IDC_OPEN_SESSION));
    EXPECT_FALSE(host->window().isEnabled(IDC_NEW_TICKET));
    endNormally();
}

TEST_F(Desktop, AWrongPasswordIsToldAndCanBeCorrected)
{
    start(sandbox.http, L"not " + sandbox.password);
    host->window().click(IDC_OPEN_SESSION);
    const auto message = nextMessage();
    EXPECT_NE(message.find("does not accept the user name and password"), std::string::npos) << message;
    EXPECT_NE(message.find("Status 401: Unauthorized"), std::string::npos) << message;
    host->window().enter(IDC_PASSWORD, sandbox.password);
    openSession();
}

TEST_F(Desktop, AServerThatIsGoneIsToldAndTheSessionCanBeGivenUp)
{
    startOnHttp();
    openSession();
    sandbox.plan(Answer::bytes("HTT").to("/helpdesk/rest/Tickets"));
    host->window().click(IDC_SHOW_TICKETS);
    EXPECT_NE(nextMessage().find("Status 600: "), std::string::npos);
    sandbox.plan(Answer::bytes("HTT").to("/helpdesk/rest/Session"));
    host->window().click(IDC_CLOSE_SESSION);
    EXPECT_NE(nextMessage().find("Status 600: "), std::string::npos);
    host->window().enter(IDC_ENDPOINT, L"http://127.0.0.1:1/helpdesk/rest"); // where nobody listens
    host->window().click(IDC_OPEN_SESSION);
    EXPECT_NE(nextMessage().find("Status 600: "), std::string::npos);
    endNormally();
}

TEST_F(Desktop, AnIdThatNoAddressCanCarryIsKeptFromTheLibrary)
{
    startOnHttp();
    openSession();
    for (const auto* id : {L"4 2", L"4\"2", L"4ü2", L""}) {
        host->window().enter(IDC_ENTITY_ID, id);
        host->window().click(IDC_SHOW_TICKETS);
        EXPECT_EQ(nextMessage().find("The id of a client or asset"), 0U);
    }
    EXPECT_EQ(sandbox.requests().size(), 2U) << "more than the session and its first list";
    endNormally();
}

TEST_F(Desktop, AFileThatCannotBeReadEndsTheRow)
{
    startOnHttp();
    openSession();
    createTicket(L"Printer");
    host->waitForStatus(L"Tickets of client 42: 1");
    addNote(L"Seen");
    host->waitForStatus(L"The note on ticket 1001 is saved. Files go to this note.");
    host->drop({makeFile(L"first.txt", "1"), folder, makeFile(L"last.txt", "3")});
    EXPECT_NE(nextMessage().find("Not started: it is not a file"), std::string::npos);
    EXPECT_EQ(sandbox.state().at("attachments").size(), 1U);
    EXPECT_TRUE(host->window().isEnabled(IDC_ATTACH_FILE));
    endNormally();
}

TEST_F(Desktop, NothingElseCanBeStartedWhileAnOperationRuns)
{
    startOnHttp();
    openSession();
    sandbox.forgetRequests();
    sandbox.plan(Answer(200, "[]").after(5000)); // longer than a loaded machine takes for what follows
    host->window().click(IDC_SHOW_TICKETS);
    waitUntil("the operation to run", [&] { return host->isBusy(); });
    for (const int command : {IDC_OPEN_SESSION, IDC_CLOSE_SESSION, IDC_SHOW_TICKETS, IDC_NEW_TICKET,
                              IDC_ADD_NOTE, IDC_ATTACH_FILE, IDC_ENDPOINT, IDC_ENTITY_ID}) {
        EXPECT_FALSE(host->window().isEnabled(command)) << command;
    }
    host->pressKey(VK_F5);
    host->waitForStatus(sessionStatus);
    EXPECT_EQ(sandbox.requests().size(), 1U);
    host->pressKey(VK_F5);
    waitUntil("the second list", [&] { return sandbox.requests().size() == 2; });
}

TEST_F(Desktop, ClosingDuringAnOperationWaitsForItAndClosesTheSession)
{
    startOnHttp();
    sandbox.plan(Answer(200, R"({"type":"Session","sessionKey":"slow"})").after(2000));
    host->window().click(IDC_OPEN_SESSION);
    waitUntil("the operation to run", [&] { return sandbox.requests().size() == 1; });
    host->window().close();
    waitUntil("the explanation", [&] {
        return host->window().text(IDC_STATUS_BAR) == L"Waiting for the server's answer, then closing…";
    });
    host->window().close(); // an impatient person
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

TEST_F(Desktop, ClosingClosesTheSession)
{
    startOnHttp();
    openSession();
    endNormally();
    EXPECT_EQ(stateOf("sessions"), "[]");
}

TEST_F(Desktop, TheKeyboardReachesEverything)
{
    startOnHttp();
    waitUntil("the first field to have the focus", [&] { return host->focus() == IDC_ENDPOINT; });
    host->pressKey(VK_RETURN); // there: the default button
    host->waitForStatus(sessionStatus);
    std::vector<int> order;
    do {
        const int before = host->focus();
        host->pressKey(VK_TAB);
        waitUntil("the focus to move", [&] { return host->focus() != before; });
        order.push_back(host->focus());
    } while (order.size() < 20 && (order.size() == 1 || order.front() != order.back()));
    const std::vector<int> expected{IDC_NEW_TICKET, IDC_LOG,          IDC_CLOSE_SESSION, IDC_CLIENT,
                                    IDC_ENTITY_ID,  IDC_SHOW_TICKETS, IDC_TICKETS,       IDC_NEW_TICKET};
    EXPECT_EQ(order, expected);
}
