// The REST SDK as a host would use it.
#include "Client.h"

#include <cpprest/http_client.h>

using utility::conversions::to_string_t;
using web::http::http_request;
using web::http::http_response;
using web::http::methods;
using web::http::client::http_client;
using web::http::client::http_client_config;

namespace
{
class SdkClient : public Bench::Client
{
public:
    void use(const std::string& server) override { m_server = to_string_t(server); }

    void saveNote(const TechNote& note) override
    {
        auto request = built(Bench::noteRequest());
        request.set_body(Bench::noteBody(note));
        m_id = Bench::idOf(answerTo(request, 201).extract_json().get());
    }

    void listTickets(std::size_t count) override
    {
        m_tickets.clear();
        auto response = answerTo(built(Bench::listRequest(count)), 200);
        m_tickets = Bench::ticketsOf(response.extract_json().get());
        Bench::expect(count, m_tickets.size(), "tickets");
    }

    void prepareUpload(const Attachment& file) override { m_upload = Bench::uploadRequest(file); }

    void upload(const Attachment& /*file*/) override
    {
        auto request = built(m_upload);
        request.set_body(std::move(m_upload.body), "multipart/form-data");
        answerTo(request, 201).extract_json().get();
    }

private:
    static http_request built(const Bench::Request& description)
    {
        http_request request(to_string_t(description.method));
        request.set_request_uri(to_string_t(description.target));
        for (const auto& [name, value] : description.headers) {
            request.headers().add(to_string_t(name), to_string_t(value));
        }
        return request;
    }

    http_response answerTo(const http_request& request, std::size_t success)
    {
        const http_client_config config; // validates both connections, as the library does
        if (m_server.find(U("https:")) == 0) {
            http_client(m_server, config).request(methods::GET, U("/")).wait();
        }
        auto response = http_client(m_server, config).request(request).get();
        Bench::expect(success, response.status_code(), "status");
        m_reason = response.reason_phrase();
        return response;
    }

    utility::string_t m_server;
    utility::string_t m_reason;
    Bench::Request m_upload;
    std::vector<TicketListEntry> m_tickets;
    std::wstring m_id;
};
} // namespace

std::unique_ptr<Bench::Client> Bench::sdkClient()
{
    return std::make_unique<SdkClient>();
}
