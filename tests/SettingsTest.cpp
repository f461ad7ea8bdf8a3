#include "support/VantryTest.h"

#include <memory>

namespace
{
using Settings = VantryTest;

void callEverySetterAndGetter()
{
    SetEndPoint(L"http://host\u00E9/rest");
    SetCredentials(L"user", L"secret");
    SetValidateCertificateCallback({});
    SetHWND(nullptr);
    GetLastResponse();
    GetCreatedTicketID();
    GetTicketList();
}
} // namespace

TEST_F(Settings, NothingHasHappenedBeforeTheFirstOperation)
{
    expectStatus(0, L"");
    EXPECT_EQ(GetCreatedTicketID(), L"");
    EXPECT_TRUE(GetTicketList().empty());
}

TEST_F(Settings, EverySetterAndGetterLeavesItsTrace)
{
    callEverySetterAndGetter();
    expectLog("settings");
}

TEST_F(Settings, WithoutTraceOnlyTheEndpointIsLogged)
{
    CapturedLog::setLevel(log4cxx::Level::getDebug());
    callEverySetterAndGetter();
    EXPECT_EQ(log.texts(), std::vector{L"INFO CVantryApi " + LogText::api +
                                       L"setEndPoint; Endpoing: http://host\u00E9/rest"});
}

TEST_F(Settings, WithInfoOffACallThatSucceedsLogsNothing)
{
    CapturedLog::setLevel(log4cxx::Level::getWarn());
    SetEndPoint(sandbox.http);
    CreateSession();
    expectStatus(200, L"OK");
    EXPECT_TRUE(log.texts().empty());
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
/// Notes, whenever it is copied, whether what the callback before it held is gone.
struct Successor
{
    Successor(std::weak_ptr<int> before, bool& wasGone) : before(std::move(before)), wasGone(wasGone) {}
    Successor(const Successor& other) : before(other.before), wasGone(other.wasGone)
    {
        wasGone = before.expired();
    }

    bool operator()(const CERT_CONTEXT& /*certificate*/) const { return true; }

    std::weak_ptr<int> before;
    bool& wasGone;
};
} // namespace

TEST_F(Settings, ACallbackGoesBeforeTheNextOneIsKept)
{
    auto held = std::make_shared<int>();
    bool wasGone = false;
    const Successor successor(held, wasGone);
    SetValidateCertificateCallback([held](const CERT_CONTEXT&) { return held != nullptr; });
    held.reset();
    SetValidateCertificateCallback(successor);
    EXPECT_TRUE(wasGone);
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
