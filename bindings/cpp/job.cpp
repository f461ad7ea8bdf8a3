// A whole help-desk job: job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set and VANTRY_TRUST=yes or no.
#include "vantry.hpp"

#include <cstdlib>
#include <iostream>

// A program with a window shows the certificate here and asks.
bool isTrusted(const std::string& host, const std::vector<std::uint8_t>& der)
{
    std::cout << "Certificate of " << host << ": " << der.size() << " bytes, the last one " << +der.back()
              << std::endl;
    const char* const answer = std::getenv("VANTRY_TRUST");
    if (answer == nullptr) {
        throw std::logic_error("Nobody has decided about the certificate.");
    }
    return answer == std::string("yes");
}

void doJob(vantry::Client& client, const std::string& person)
{
    vantry::Session session(client);
    const std::string ticket = client.createTicket(person, vantry::EntityType::Client,
                                                   "Größter Drucker € 🖨", "It does not print.");
    const std::string note = client.saveTechNote(ticket, "Refilled.", 15, true);
    client.saveAttachment(note, "counter.txt", "Pages: 4711");
    std::cout << "Created ticket " << ticket << " with note " << note << std::endl;
    for (const vantry::Ticket& entry : client.requestTicketList(person, vantry::EntityType::Client)) {
        std::cout << entry.id << ' ' << entry.name << std::endl;
    }
    session.close();
}

int main(int argc, char** argv)
{
    const char* const password = std::getenv("VANTRY_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::cerr << "usage: job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set" << std::endl;
        return EXIT_FAILURE;
    }
    try {
        vantry::Client client(argv[1], argv[2], password);
        client.onCertificate(isTrusted);
        client.inBackground([&](vantry::Client& vantry) { doJob(vantry, argv[3]); }).get();
        return EXIT_SUCCESS;
    } catch (const vantry::Error& error) {
        std::cout << "Failed: " << error.status() << ' ' << error.what() << std::endl;
    } catch (const std::exception& error) {
        std::cout << "Ended by: " << error.what() << std::endl;
    }
    return EXIT_FAILURE;
}
