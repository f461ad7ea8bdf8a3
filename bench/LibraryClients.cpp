// The library through its C++ functions, and through its C interface.
#include "Client.h"

#include "vantry.h"

#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

namespace
{
std::string utf8(const std::wstring& text)
{
    return boost::locale::conv::utf_to_utf<char>(text);
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

    void upload(const Attachment& file) override
    {
        SaveAttachment(file);
        expectStatus(201);
    }

private:
    static void expectStatus(int expected)
    {
        const auto& last = GetLastResponse();
        Bench::expect(expected, last.httpStatusCode, "the library: " + utf8(last.errorMessage));
    }
};

struct Free
{
    void operator()(vantry_result* result) const { vantry_result_free(result); }
};
using Result = std::unique_ptr<vantry_result, Free>;

Result succeeded(vantry_result* result)
{
    Result owned(result);
    if (vantry_result_succeeded(result) == 0) {
        throw std::runtime_error("the C interface: " + std::to_string(vantry_result_status(result)) + " " +
                                 vantry_result_message(result));
    }
    return owned;
}

class CInterfaceClient : public Bench::Client
{
public:
    void use(const std::string& server) override
    {
        vantry_set_endpoint((server + "/helpdesk/rest").c_str());
        vantry_set_credentials("technician", "secret");
    }

    void prepareNote(const TechNote& note) override
    {
        m_ticketId = utf8(note.jobTicketId);
        m_text = utf8(note.noteText);
    }

    void saveNote(const TechNote& note) override
    {
        const vantry_tech_note given{sizeof(given), m_ticketId.c_str(), m_text.c_str(), note.workTime,
                                     note.isVisible ? 1 : 0};
        m_note = succeeded(vantry_save_tech_note(&given));
    }

    void listTickets(std::size_t count) override
    {
        m_tickets = succeeded(vantry_request_ticket_list(std::to_string(count).c_str(), VANTRY_CLIENT));
        Bench::expect(count, vantry_result_ticket_count(m_tickets.get()), "tickets");
    }

    void prepareUpload(const Attachment& file) override
    {
        prepareNote({L"1001", L"For the file.", 0, true});
        saveNote({});
        m_name = utf8(file.fileName);
    }

    void upload(const Attachment& file) override
    {
        const vantry_attachment given{sizeof(given), vantry_result_note_id(m_note.get()), m_name.c_str(),
                                      file.data.data(), file.data.size()};
        succeeded(vantry_save_attachment(&given));
    }

private:
    std::string m_ticketId;
    std::string m_text;
    std::string m_name;
    Result m_note;
    Result m_tickets;
};
} // namespace

std::unique_ptr<Bench::Client> Bench::libraryClient()
{
    return std::make_unique<LibraryClient>();
}

std::unique_ptr<Bench::Client> Bench::cInterfaceClient()
{
    return std::make_unique<CInterfaceClient>();
}
