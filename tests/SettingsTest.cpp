#include "support/VantryTest.h"

#include <memory>
#include <utility>

using namespace Trace;

namespace
{
class Settings : public VantryTest
{};

Lines hostScope(const std::wstring& name, const Lines& inner)
{
    const auto line = L"TRACE TAVIKVANTRYAPI " + name;
    return Lines{line + L" entering."} + inner + Lines{line + L" exiting."};
}
} // namespace

TEST_F(Settings, NothingHasHappenedBeforeTheFirstOperation)
{
    expectStatus(0, L"");
    EXPECT_EQ(GetCreatedTicketID(), L"");
    EXPECT_TRUE(GetTicketList().empty());
}

TEST_F(Settings, GettersReferToTheSameObjectsEveryTime)
{
    EXPECT_EQ(&GetTicketList(), &GetTicketList());
    EXPECT_EQ(&GetLastResponse(), &GetLastResponse());
    EXPECT_EQ(&GetCreatedTicketID(), &GetCreatedTicketID());
}

TEST_F(Settings, EverySetterAndGetterLeavesItsTrace)
{
    SetEndPoint(L"");
    SetCredentials(L"user", L"secret");
    SetValidateCertificateCallback({});
    SetHWND(nullptr);
    GetLastResponse();
    GetCreatedTicketID();
    GetTicketList();
    EXPECT_TRUE(same(
        hostScope(L"SetEndPoint", scope(api + L"setEndPoint", {info(api + L"setEndPoint; Endpoing: ")})) +
            hostScope(L"SetCredentials", scope(api + L"setCredentials")) +
            hostScope(L"SetValidateCertificateCallback", scope(api + L"setValidateCertificateCallback")) +
            hostScope(L"SetHWND", scope(api + L"setHWND")) +
            hostScope(L"GetLastResponse", scope(api + L"GetLastResponse")) +
            hostScope(L"GetCreatedTicketID", scope(api + L"GetCreatedTicketID")) +
            hostScope(L"GetTicketList", scope(api + L"GetTicketList")),
        log.texts()));
}

TEST_F(Settings, WithoutTraceOnlyTheEndpointIsLogged)
{
    CapturedLog::setLevel(log4cxx::Level::getDebug());
    SetEndPoint(L"http://host\u00E9/rest");
    SetCredentials(L"user", L"secret");
    SetValidateCertificateCallback({});
    SetHWND(nullptr);
    GetLastResponse();
    GetCreatedTicketID();
    GetTicketList();
    EXPECT_TRUE(same({info(api + L"setEndPoint; Endpoing: http://host\u00E9/rest")}, log.texts()));
}

TEST_F(Settings, WithInfoOffACallThatSucceedsLogsNothing)
{
    CapturedLog::setLevel(log4cxx::Level::getWarn());
    SetEndPoint(sandbox.http);
    CreateSession();
    expectStatus(200, L"OK");
    EXPECT_TRUE(same({}, log.texts()));
}

TEST_F(Settings, OnlyTheCallbackSetLastIsKept)
{
    auto first = std::make_shared<int>();
    auto second = std::make_shared<int>();
    SetValidateCertificateCallback([first](const CERT_CONTEXT&) { return first != nullptr; });
    EXPECT_EQ(first.use_count(), 2);
    SetValidateCertificateCallback([second](const CERT_CONTEXT&) { return second != nullptr; });
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(second.use_count(), 2);
    SetValidateCertificateCallback({});
    EXPECT_EQ(second.use_count(), 1);
}

namespace
{
/// Notes at every copy whether the callback before it has gone.
struct Successor
{
    Successor(std::weak_ptr<int> watched, bool& note) : predecessor(std::move(watched)), gone(note) {}
    Successor(const Successor& other) : predecessor(other.predecessor), gone(other.gone)
    {
        gone = predecessor.expired();
    }
    bool operator()(const CERT_CONTEXT& /*certificate*/) const { return true; }

    std::weak_ptr<int> predecessor;
    bool& gone;
};
} // namespace

TEST_F(Settings, TheOldCallbackGoesBeforeTheNewOneComes)
{
    auto first = std::make_shared<int>();
    const std::weak_ptr<int> watched = first;
    SetValidateCertificateCallback(
        [first = std::move(first)](const CERT_CONTEXT&) { return first != nullptr; });
    bool goneAtLastCopy = false;
    SetValidateCertificateCallback(Successor(watched, goneAtLastCopy));
    EXPECT_TRUE(goneAtLastCopy);
    SetValidateCertificateCallback({});
}

TEST_F(Settings, EverySettingCountsFromTheNextOperation)
{
    SetCredentials(L"nobody", L"nothing");
    CreateSession();
    expectStatus(401, L"Unauthorized");
    SetCredentials(sandbox.user, sandbox.password);
    CreateSession();
    expectStatus(200, L"OK");
    SetEndPoint(sandbox.http + L"/elsewhere");
    CreateSession();
    expectStatus(404, L"Not Found");
}

TEST(Unset, AnOperationWithoutAnEndpointFailsWithTheGeneralText)
{
    CreateSession();
    EXPECT_EQ(GetLastResponse().httpStatusCode, 600);
    EXPECT_EQ(GetLastResponse().errorMessage, requestFailedText);
}
