#include "Host.h"

#include "Addresses.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/Text.h"

#include <boost/algorithm/string/replace.hpp>

#include <cstdlib>
#include <iostream>

using VantryIntegrationApi::CVantryApi;

namespace
{
CapturedLog& capturedLog()
{
    static CapturedLog log;
    return log;
}

/// The password as a query shows it; empty: none.
std::wstring& secret()
{
    static std::wstring text;
    return text;
}
} // namespace

namespace fuzz
{
void require(bool holds, std::string_view what)
{
    if (!holds) {
        std::cerr << "FIND: " << what << std::endl;
        std::abort();
    }
}

void logAt(const log4cxx::LevelPtr& level)
{
    capturedLog().clear();
    CapturedLog::setLevel(level);
}

void requireSecrecy(const std::string& text)
{
    require(secret().empty() || text.find(narrow(secret())) == std::string::npos,
            "shows a password: " + text);
    require(secret().empty() || capturedLog().containing(secret()).empty(), "a line shows a password");
}

void setUp(CVantryApi& client, const std::wstring& endPoint, const std::wstring& userName,
           const std::wstring& password)
{
    client.setEndPoint(endPoint);
    client.setCredentials(userName, password);
    const auto shown = VantryIntegrationApi::Utils::shownInQuery(password).value_or(L"");
    secret() = shown.empty() ? L"" : L"password=" + shown;
}

std::string runOperation(CVantryApi& client, unsigned char choice)
{
    try {
        switch (choice % 6) {
        case 0:
            client.wrpCreateSession();
            break;
        case 1:
            client.wrpCloseSession();
            break;
        case 2:
            client.wrpSaveTechNote({L"1001", L"A note", 15, true});
            break;
        case 3:
            client.wrpSaveAttachment({"content", L"file.txt"});
            break;
        case 4:
            client.wrpCreateTicket({L"42", Client, L"A subject", L"A detail"});
            break;
        default:
            try {
                client.wrpRequestTicketList(L"42", Client);
            } catch (const web::json::json_exception& e) {
                requireSecrecy(e.what());
                return e.what();
            }
        }
    } catch (const std::exception& e) {
        require(false, std::string("an exception that nobody expects: ") + e.what());
    }
    return "";
}

std::string withEcho(std::string_view answer, const std::string& target)
{
    return boost::replace_all_copy(std::string(answer), "\1", target);
}

bool isOneLine(std::string_view text)
{
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}
} // namespace fuzz
