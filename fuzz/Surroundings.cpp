#include "Surroundings.h"

#include "Addresses.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/Text.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <cpprest/containerstream.h>
#include <cpprest/http_client.h>
#include <pplx/pplx.h>

#include <cstdlib>
#include <iostream>
#include <iterator>
#include <memory>
#include <mutex>
#include <sstream>

using VantryIntegrationApi::CVantryApi;
using web::http::http_request;
using web::http::http_response;

namespace
{
CapturedLog& capturedLog()
{
    static CapturedLog log;
    return log;
}

/// The password as a query shows it; empty: none.
std::wstring secret;
fuzz::Server server;

class AtOnce final : public pplx::scheduler_interface
{
public:
    void schedule(pplx::TaskProc_t task, void* argument) override { task(argument); }
};
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
    require(secret.empty() || text.find(narrow(secret)) == std::string::npos, "shows a password: " + text);
    require(secret.empty() || capturedLog().containing(secret).empty(), "a line shows a password");
}

void setUp(CVantryApi& client, const std::wstring& endPoint, const std::wstring& userName,
           const std::wstring& password)
{
    client.setEndPoint(endPoint);
    client.setCredentials(userName, password);
    const auto shown = VantryIntegrationApi::Utils::shownInQuery(password).value_or(L"");
    secret = shown.empty() ? L"" : L"password=" + shown;
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
            client.wrpRequestTicketList(L"42", Client);
        }
    } catch (const std::exception& e) {
        const bool isDocumented =
            choice % 6 == 5 && dynamic_cast<const web::json::json_exception*>(&e) != nullptr;
        require(isDocumented, std::string("an exception that nobody expects: ") + e.what());
        requireSecrecy(e.what());
        return e.what();
    }
    return "";
}

void setServer(Server newServer)
{
    static std::once_flag first;
    std::call_once(first, [] { pplx::set_ambient_scheduler(std::make_shared<AtOnce>()); });
    server = std::move(newServer);
}

std::string targetOf(const http_request& request)
{
    return request.absolute_uri().resource().to_string();
}

http_response responseOf(std::string_view bytes)
{
    std::istringstream input{std::string(bytes)};
    std::string line;
    std::getline(input, line); // "HTTP/1.1 200 OK"
    std::istringstream status(line);
    std::string version;
    std::string reason;
    web::http::status_code code = 0;
    status >> version >> code;
    std::getline(status, reason);
    http_response response(code);
    response.set_reason_phrase(boost::trim_copy(reason));
    while (std::getline(input, line) && !line.empty() && line != "\r") {
        if (const auto colon = line.find(':'); colon != std::string::npos) {
            response.headers().add(line.substr(0, colon), boost::trim_copy(line.substr(colon + 1)));
        }
    }
    std::string content(std::istreambuf_iterator<char>(input), {});
    const auto size = content.size();
    const auto body = response._get_impl();
    body->set_instream(concurrency::streams::bytestream::open_istream(std::move(content)));
    body->_complete(size);
    return response;
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

// Takes the place of the function of this name in the REST SDK: the linker takes from a library only what the
// program does not define.
pplx::task<http_response> web::http::client::http_client::request(http_request request,
                                                                  const pplx::cancellation_token& /*token*/)
{
    request._set_base_uri(base_uri());
    return pplx::task_from_result(server(std::move(request)));
}
