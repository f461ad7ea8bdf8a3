// What the job does not use of the binding: checks ENDPOINT USER CLIENT LOG-FILE
#include "vantry.hpp"

#include <cstdio>
#include <cstdlib>
#include <iostream>

using vantry::EntityType;

namespace
{
/// Prints what `operation` has thrown, or of a `vantry::Error` its status.
template <typename Operation>
void failing(const std::string& what, Operation operation)
{
    std::cout << what << ": ";
    try {
        operation();
        std::cout << "nothing was thrown";
    } catch (const vantry::Error& error) {
        std::cout << error.status();
    } catch (const std::runtime_error& error) {
        std::cout << error.what();
    }
    std::cout << std::endl;
}

void checkLog(vantry::Client& client, const std::string& password)
{
    std::size_t lines = 0;
    std::size_t withPassword = 0;
    client.onLog(VANTRY_LOG_TRACE, [&](std::int32_t level, const std::string& line) {
        lines += level >= VANTRY_LOG_TRACE && level <= VANTRY_LOG_FATAL ? 1 : 0;
        withPassword += line.find(password) != std::string::npos ? 1 : 0;
    });
    client.createSession();
    std::cout << "log: " << (lines > 0 ? "lines, " : "no lines, ") << (withPassword > 0 ? "some" : "none")
              << " with the password" << std::endl;
    client.onLog(VANTRY_LOG_TRACE, [](auto, const auto&) { throw std::runtime_error("Enough of the log."); });
    failing("a log callback that fails", [&] { client.closeSession(); });
    client.onLog(VANTRY_LOG_FATAL, nullptr);
}

void checkProgress(vantry::Client& client)
{
    const std::string file(3000000, 'x');
    const vantry::Session session(client);
    const auto note =
        client.saveTechNote(client.createTicket("42", EntityType::Client, "S", "D"), "N", 1, true);
    bool isAllSent = false;
    client.onProgress([&](const vantry::Progress& progress) {
        isAllSent = isAllSent || (progress.sent == progress.toSend && progress.sent > file.size());
        return true;
    });
    client.saveAttachment(note, "file", file);
    std::cout << "progress: " << (isAllSent ? "all was sent" : "not all was sent") << std::endl;
    client.onProgress([](const auto&) { return false; });
    failing("given up", [&] { client.saveAttachment(note, "file", file); });
    int calls = 0;
    client.onProgress([&](const auto&) -> bool {
        ++calls;
        throw std::runtime_error("Enough of the progress.");
    });
    failing("a progress callback that fails", [&] { client.saveAttachment(note, "file", file); });
    std::cout << "heard: " << (calls < 10 ? "at once" : "late") << std::endl;
    client.onProgress(nullptr);
}

void checkTexts(vantry::Client& client)
{
    for (const auto& [what, text] : {std::pair{"a zero in a text", std::string("a\0b", 3)},
                                     std::pair{"half a surrogate pair", std::string("\xED\xA0\xBD")}}) {
        try {
            client.createTicket("42", EntityType::Client, text, "D");
            std::cout << what << ": accepted" << std::endl;
        } catch (const vantry::Error& error) {
            std::cout << what << ": " << (error.status() == 603 ? "refused" : error.what()) << std::endl;
        }
    }
    try {
        client.saveTechNote("9999", "N", 1, true);
    } catch (const vantry::Error& error) {
        std::cout << "the server's failure: " << error.status() << ' ' << error.what() << std::endl;
    }
}
} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("VANTRY_PASSWORD");
    if (argc != 5 || password == nullptr) {
        return EXIT_FAILURE;
    }
    {
        vantry::Client client(argv[1], argv[2], password);
        client.logTo(argv[4], VANTRY_LOG_TRACE);
        client.onCertificate([](const std::string& host, const auto& der) {
            std::cout << "certificate of " << host << ": ";
            for (const auto byte : der) {
                std::printf("%02x", byte);
            }
            std::cout << std::endl;
            return true;
        });
        client.createSession();
        client.onCertificate([](const auto&, const auto&) { return true; });
        client.closeSession();
        checkLog(client, password);
        checkProgress(client);
        client.onCertificate([&](const auto&, const auto&) {
            failing("from within a callback", [&] { client.createSession(); });
            return true;
        });
        client.createSession();
        client.onCertificate(nullptr);
        client.closeSession();
        checkTexts(client);
        auto second = client.inBackground(
            [](vantry::Client& c) { return c.createTicket("42", EntityType::Client, "S", "D"); });
        second.get();
        for (int thread = 0; thread < 200; ++thread) { // what the binding keeps for each must survive its end
            client.inBackground([](vantry::Client& c) { c.onProgress(nullptr); }).get();
        }
        const auto list =
            client
                .inBackground([](vantry::Client& c) { return c.requestTicketList("42", EntityType::Client); })
                .get();
        std::cout << "in the background: " << list.size() << " tickets of " << list.back().clientName
                  << std::endl;
        client.onCertificate([](const auto&, const auto&) { return false; });
    }
    vantry::Client client(argv[1], argv[2], password);
    client.createSession();
    client.closeSession();
    std::cout << "without callbacks: done" << std::endl;
}
