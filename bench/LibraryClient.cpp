#include "Client.h"

#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

namespace
{
void expectStatus(int expected)
{
    if (const auto& last = GetLastResponse(); last.httpStatusCode != expected) {
        throw std::runtime_error("the library: " + std::to_string(last.httpStatusCode) + " " +
                                 boost::locale::conv::utf_to_utf<char>(last.errorMessage));
    }
}

class LibraryClient : public Bench::Client
{
public:
    void use(const std::string& server) override
    {
        SetEndPoint(std::wstring(server.begin(), server.end()) + L"/helpdesk/rest");
        SetCredentials(L"technician", L"secret");
    }

    void saveNote(const TechNote& note) override
    {
        SaveTechNote(note);
        expectStatus(201);
    }

    void listTickets(std::size_t count) override
    {
        RequestTicketList(std::to_wstring(count), VantryType::Client);
        expectStatus(200);
        Bench::expect(count, GetTicketList().size(), "tickets");
    }

    void prepareUpload(const Attachment& /*file*/) override {}

    void upload(const Attachment& file) override
    {
        SaveAttachment(file);
        expectStatus(201);
    }
};
} // namespace

std::unique_ptr<Bench::Client> Bench::libraryClient()
{
    return std::make_unique<LibraryClient>();
}
