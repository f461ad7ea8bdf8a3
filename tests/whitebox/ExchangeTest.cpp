// The generic exchange with what no operation sends.
#include "VantryApi.h"

#include "support/CapturedLog.h"
#include "support/Sandbox.h"

#include <gtest/gtest.h>

namespace json = web::json;

namespace
{
class Exchange : public testing::Test
{
protected:
    Exchange() { client.setEndPoint(sandbox.http); }

    Request sent(const std::wstring& method, const json::value& body)
    {
        sandbox.forgetRequests();
        sandbox.plan(Answer(200, "{}"));
        json::value result;
        client.unsafe_sendRequest(_XPLATSTR("/Anything"), method, body, result);
        return sandbox.onlyRequest();
    }

    Sandbox sandbox;
    CapturedLog log;
    VantryIntegrationApi::CVantryApi client;
};
} // namespace

TEST_F(Exchange, OnlyPostAndPutCarryABody)
{
    for (const auto* const method : {L"POST", L"PUT"}) {
        auto request = sent(method, json::value::number(7));
        EXPECT_EQ(request.body, "7");
        EXPECT_EQ(request.headers["Content-Type"], "application/json");
        request = sent(method, json::value());
        EXPECT_EQ(request.body, "null");
        EXPECT_EQ(request.headers["Content-Type"], "application/json");
    }
    for (const auto* const method : {L"GET", L"DELETE"}) {
        const auto request = sent(method, json::value::number(7));
        EXPECT_EQ(request.body, "");
        EXPECT_EQ(request.headers.count("Content-Type"), 0U);
    }
    EXPECT_EQ(log.with(L"We are sending request with data: ").size(), 4U);
}

TEST_F(Exchange, AnAnswerWithoutABodyEmptiesTheResultAndIsNotLogged)
{
    sandbox.plan(Answer(404, "", ""));
    auto result = json::value::string(_XPLATSTR("old"));
    const auto status = client.unsafe_sendRequest(_XPLATSTR("/Anything"), L"GET", {}, result);
    EXPECT_EQ(status.httpStatusCode, 404);
    EXPECT_EQ(status.errorMessage, L"Not Found");
    EXPECT_TRUE(result.is_null());
    EXPECT_TRUE(log.with(L"Server's response: ").empty());
}
