// The clients that speak the server's interface themselves.
#include "Client.h"

#include <boost/locale/encoding_utf.hpp>
#include <cpprest/http_client.h>

#include <stdexcept>

namespace json = web::json;
using Bench::Request;
using utility::conversions::to_string_t;
using utility::conversions::to_utf8string;
using web::http::client::http_client;

namespace
{
const std::string credentials = "username=technician&password=secret";

/// The SDK's text is wide on Windows: there is nothing to convert.
template <typename To, typename From>
std::basic_string<To> converted(const std::basic_string<From>& text)
{
    if constexpr (std::is_same_v<To, From>) {
        return text;
    } else {
        return boost::locale::conv::utf_to_utf<To>(text);
    }
}

json::value jsonOf(const std::wstring& text)
{
    return json::value::string(converted<utility::char_t>(text));
}

Request noteRequest(const TechNote& note)
{
    json::value ticket;
    ticket[U("type")] = json::value::string(U("JobTicket"));
    ticket[U("id")] = jsonOf(note.jobTicketId);
    json::value body;
    body[U("noteText")] = jsonOf(note.noteText);
    body[U("jobticket")] = std::move(ticket);
    body[U("workTime")] = jsonOf(std::to_wstring(note.workTime));
    body[U("isHidden")] = json::value::boolean(!note.isVisible);
    return {"POST",
            "/helpdesk/rest/TechNotes?" + credentials,
            {{"Content-Type", "application/json"}},
            to_utf8string(body.serialize())};
}

Request listRequest(std::size_t count)
{
    return {"GET",
            "/helpdesk/rest/Tickets?qualifier=(clientId=" + std::to_string(count) + ")&" + credentials,
            {},
            {}};
}

Request uploadRequest(const Attachment& file)
{
    Request request{"POST",
                    "/helpdesk/attachment/upload?type=TechNote&entityId=2001",
                    {{"Cache-Control", "no-cache"},
                     {"Content-Type", "multipart/form-data; boundary====1700000000==="},
                     {"Cookie", "JSESSIONID=1; wosid=2; vantryuser_helpdesk=technician"},
                     {"Pragma", "no-cache"}},
                    {}};
    const std::string head = "\r\n--===1700000000===\r\n"
                             "Content-Disposition: form-data; name=\"file\"; filename=\"file.bin\"\r\n"
                             "Content-Type: null\r\nContent-Transfer-Encoding: binary\r\n\r\n";
    const std::string tail = "\r\n--===1700000000===--\r\n";
    request.body.reserve(head.size() + file.data.size() + tail.size());
    request.body.append(head).append(file.data).append(tail);
    return request;
}

std::wstring idOf(const json::value& answer)
{
    return converted<wchar_t>(answer.at(U("id")).serialize());
}

std::vector<TicketListEntry> ticketsOf(const json::value& answer)
{
    const auto text = [](const json::value& ticket, const utility::char_t* name) {
        return converted<wchar_t>(ticket.at(name).as_string());
    };
    std::vector<TicketListEntry> tickets;
    for (const auto& ticket : answer.as_array()) {
        tickets.push_back({idOf(ticket), text(ticket, U("shortSubject")), text(ticket, U("shortDetail")),
                           text(ticket, U("displayClient"))});
    }
    return tickets;
}

/// Sends a request, whose body it may take, and reads the answer, which must have the status `success`.
using Call = std::function<json::value(const web::uri& server, Request& request, std::size_t success)>;

class RestClient : public Bench::Client
{
public:
    explicit RestClient(Call call) : m_call(std::move(call)) {}

    void use(const std::string& server) override { m_server = to_string_t(server); }

    void saveNote(const TechNote& note) override
    {
        auto request = noteRequest(note);
        m_id = idOf(m_call(m_server, request, 201));
    }

    void listTickets(std::size_t count) override
    {
        m_tickets.clear();
        auto request = listRequest(count);
        m_tickets = ticketsOf(m_call(m_server, request, 200));
        Bench::expect(count, m_tickets.size(), "tickets");
    }

    void prepareUpload(const Attachment& file) override { m_upload = uploadRequest(file); }
    void upload(const Attachment& /*file*/) override { m_call(m_server, m_upload, 201); }

private:
    Call m_call;
    web::uri m_server;
    Request m_upload;
    std::vector<TicketListEntry> m_tickets;
    std::wstring m_id;
};

json::value overSdk(const web::uri& server, Request& description, std::size_t success)
{
    web::http::http_request request(to_string_t(description.method));
    request.set_request_uri(to_string_t(description.target));
    for (const auto& [name, value] : description.headers) {
        request.headers().add(to_string_t(name), to_string_t(value));
    }
    if (!description.body.empty()) {
        request.set_body(std::move(description.body), description.headers.at("Content-Type"));
    }
    if (Bench::isSecure(server)) { // validates both connections, as the library does
        http_client(server).request(web::http::methods::GET, U("/")).wait();
    }
    const auto response = http_client(server).request(request).get();
    Bench::expect(success, response.status_code(), "status");
    return response.extract_json().get();
}
} // namespace

namespace Bench
{
std::unique_ptr<Client> sdkClient()
{
    return std::make_unique<RestClient>(&overSdk);
}

std::unique_ptr<Client> plainClient(Exchange exchange)
{
    return std::make_unique<RestClient>([exchange = std::move(exchange)](const web::uri& server,
                                                                         const Request& request,
                                                                         std::size_t success) {
        if (isSecure(server)) {
            exchange(server, {"GET", "/", {}, {}}, true);
        }
        auto response = exchange(server, request, false);
        expect(success, response.status, "status");
        return json::value::parse(to_string_t(std::move(response.body)));
    });
}

void expect(std::size_t expected, std::size_t actual, const std::string& what)
{
    if (expected != actual) {
        throw std::runtime_error(what + ": " + std::to_string(actual) + " instead of " +
                                 std::to_string(expected));
    }
}
} // namespace Bench
