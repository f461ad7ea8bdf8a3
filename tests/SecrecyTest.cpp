// No password reaches a log, however it is written.
#include "support/VantryTest.h"

#include <boost/algorithm/string/replace.hpp>

using namespace LogText;

namespace
{
using Secrecy = VantryTest;

struct Masking
{
    std::wstring user;
    std::wstring password;
    std::wstring path; ///< of the URL in the log, with an asterisk where a mask is expected
    std::wstring operation = L"CreateSession";
};

const std::vector<Masking> maskings{
    {L"Session", L"Key", L"/*?session*=", L"CloseSession"}, // has no credentials, and before a session no key
    {L"technician", L"wrench", L"/Session?username=*&password=*"},
    {L"", L"wrench", L"*/Session?username=&password=*"},
    {L"a b&c", L"d+\u00E9%", L"/Session?username=*&password=*"},
    {L"same", L"same", L"/Session?username=*&password=*"},
    {L"wrench1", L"wrench", L"/Session?username=*&password=*"},
    // A user name that occurs earlier is masked there instead. The value after "password=" is always masked.
    {L"Session", L"wrench", L"/*?username=Session&password=*"},
    {L"user", L"wrench", L"/Session?*name=user&password=*"},
    {L"technician", L"Session", L"/*?username=*&password=*"},
    {L"technician", L"e", L"/S*ssion?username=*&password=*"},
    {L"technician", L"username", L"/Session?*=*&password=*"},
    {L"technician", L"password", L"/Session?username=*&*=*"},
    {L"e", L"e", L"/S*ssion?us*rname=e&password=*"},
    {L"pass", L"word", L"/Session?username=*&pass*=*"},
    {L"technician", L"s", L"/Se*sion?username=*&password=*"},
    {L"password", L"password", L"/Session?username=*&*=*"},
    {L"technician", L"42", L"/Tickets?qualifier=(clientId=*)&username=*&password=*", L"RequestTicketList"},
};
} // namespace

TEST_F(Secrecy, CredentialsInTheUsedUrlAreMasked)
{
    for (const auto& row : maskings) {
        SCOPED_TRACE(narrow(row.user + L" " + row.password));
        SetCredentials(row.user, row.password);
        log.clear();
        operation(row.operation).start();
        const auto name = api + operation(row.operation).member;
        EXPECT_EQ(log.containing(L"Function: " + name),
                  std::vector{L"INFO CVantryApi Function: " + name + L" used url: " + sandbox.http +
                              boost::replace_all_copy(row.path, L"*", mask)});
    }
}

/// The catalogue of faults looks for a password that needs no encoding, whatever happens.
TEST_F(Secrecy, NoLineHoldsAPasswordAsItIsOrEncoded)
{
    SetCredentials(L"technician", L"a b&c=d+\u00E9%");
    for (const auto& endPoint :
         {sandbox.http, std::wstring(L"http://localhost:1/rest"), std::wstring(L"http://a b/")}) {
        SetEndPoint(endPoint);
        for (const auto& call : operations()) {
            call.start();
        }
    }
    SetEndPoint(sandbox.http);
    sandbox.plan(Answer(404, "Cannot GET /Session?password=a%20b%26c%3Dd%2B%C3%A9%25", "text/plain"));
    CreateSession();
    EXPECT_FALSE(log.containing(L"Cannot GET /Session?password=").empty());
    for (const auto* const form : {L"a b&c=d+\u00E9%", L"a%20b%26c%3Dd%2B%C3%A9%25"}) {
        EXPECT_EQ(log.containing(form), std::vector<std::wstring>());
    }
}
