// The whole job of a host, over both kinds of connection and in both modes, as the server saw it.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <tuple>

namespace
{
/// The parameters: over TLS or not, with a window or not.
class MainJob : public VantryTest, public testing::WithParamInterface<std::tuple<bool, bool>>
{
protected:
    MainJob()
    {
        if (std::get<0>(GetParam())) {
            useHttps();
            SetValidateCertificateCallback([](const CERT_CONTEXT&) { return true; });
        }
        if (std::get<1>(GetParam())) {
            SetHWND(window.handle());
        }
    }

    template <typename Call>
    void run(int success, const Call& call)
    {
        log.clear();
        call();
        if (std::get<1>(GetParam())) {
            ASSERT_TRUE(window.next(std::chrono::seconds(20)));
        }
        ASSERT_TRUE(log.waitFor(L"~SignalAsyncRequestFinishedWrapper exiting."));
        EXPECT_EQ(GetLastResponse().httpStatusCode, success) << narrow(GetLastResponse().errorMessage);
    }

    TestWindow window;
};
} // namespace

TEST_P(MainJob, LeavesTheServerWithWhatTheHostSaid)
{
    const std::string content("line\r\n\0\xFF", 8);
    run(200, [] { CreateSession(); });
    run(201, [] { CreateTicket({L"42", Client, L"Printer \u00E9\u20AC", L"It \"burns\""}); });
    const auto& ticket = GetCreatedTicketID();
    EXPECT_EQ(ticket, L"1001");
    run(201, [&] { SaveTechNote({ticket, L"Sent \u4E2D", 15, true}); });
    run(201, [&] { SaveAttachment({content, L"photo.jpg"}); });
    run(200, [] { RequestTicketList(L"42", Client); });
    ASSERT_EQ(GetTicketList().size(), 1U);
    EXPECT_EQ(GetTicketList().front().id, L"1001");
    EXPECT_EQ(GetTicketList().front().name, L"Printer \u00E9\u20AC");
    EXPECT_EQ(GetTicketList().front().detail, L"It \"burns\"");
    run(200, [] { RequestTicketList(L"42", Asset); });
    EXPECT_TRUE(GetTicketList().empty());
    EXPECT_EQ(sandbox.state().at(_XPLATSTR("sessions")).size(), 1U);
    run(200, [] { CloseSession(); });

    const auto state = sandbox.state();
    EXPECT_EQ(state.at(_XPLATSTR("sessions")).size(), 0U);
    const auto& note = state.at(_XPLATSTR("techNotes")).at(0);
    EXPECT_EQ(utility::conversions::to_utf8string(note.at(_XPLATSTR("noteText")).as_string()),
              "Sent \xE4\xB8\xAD");
    EXPECT_EQ(note.at(_XPLATSTR("isHidden")).as_bool(), false);
    EXPECT_EQ(sandbox.get("/attachments/3001"), content);
    for (const auto& request : sandbox.requests()) {
        EXPECT_EQ(request.secure, std::get<0>(GetParam()));
    }
}

INSTANTIATE_TEST_SUITE_P(Mode, MainJob, testing::Combine(testing::Bool(), testing::Bool()),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param) ? "Tls" : "Plain") +
                                    (std::get<1>(info.param) ? "Async" : "Sync");
                         });
