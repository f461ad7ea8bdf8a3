#include "Client.h"

#include <boost/locale/encoding_utf.hpp>
#include <cpprest/base_uri.h>

#include <stdexcept>

namespace json = web::json;
using utility::conversions::to_string_t;

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

class PlainClient : public Bench::Client
{
public:
    explicit PlainClient(Bench::Exchange exchange) : m_exchange(std::move(exchange)) {}

    void use(const std::string& server) override
    {
        const web::uri address(to_string_t(server));
        m_server = {address.scheme() == U("https"), utility::conversions::to_utf8string(address.host()),
                    std::to_string(address.port())};
    }

    void saveNote(const TechNote& note) override
    {
        auto request = Bench::noteRequest();
        request.body = utility::conversions::to_utf8string(Bench::noteBody(note).serialize());
        m_id = Bench::idOf(answerTo(request, 201));
    }

    void listTickets(std::size_t count) override
    {
        m_tickets.clear();
        m_tickets = Bench::ticketsOf(answerTo(Bench::listRequest(count), 200));
        Bench::expect(count, m_tickets.size(), "tickets");
    }

    void prepareUpload(const Attachment& file) override { m_upload = Bench::uploadRequest(file); }
    void upload(const Attachment& /*file*/) override { answerTo(m_upload, 201); }

private:
    json::value answerTo(const Bench::Request& request, std::size_t success) const
    {
        if (m_server.secure) {
            m_exchange(m_server, {"GET", "/", {}, {}}, true);
        }
        auto response = m_exchange(m_server, request, false);
        Bench::expect(success, response.status, "status");
        return json::value::parse(to_string_t(std::move(response.body)));
    }

    Bench::Exchange m_exchange;
    Bench::Server m_server;
    Bench::Request m_upload;
    std::vector<TicketListEntry> m_tickets;
    std::wstring m_id;
};
} // namespace

namespace Bench
{
std::unique_ptr<Client> plainClient(Exchange exchange)
{
    return std::make_unique<PlainClient>(std::move(exchange));
}

void expect(std::size_t expected, std::size_t actual, const std::string& what)
{
    if (expected != actual) {
        throw std::runtime_error(what + ": " + std::to_string(actual) + " instead of " +
                                 std::to_string(expected));
    }
}

Request noteRequest()
{
    return {"POST", "/helpdesk/rest/TechNotes?" + credentials, {{"Content-Type", "application/json"}}, {}};
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

json::value noteBody(const TechNote& note)
{
    json::value ticket;
    ticket[U("type")] = json::value::string(U("JobTicket"));
    ticket[U("id")] = jsonOf(note.jobTicketId);
    json::value body;
    body[U("noteText")] = jsonOf(note.noteText);
    body[U("jobticket")] = std::move(ticket);
    body[U("workTime")] = jsonOf(std::to_wstring(note.workTime));
    body[U("isHidden")] = json::value::boolean(!note.isVisible);
    return body;
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
} // namespace Bench
