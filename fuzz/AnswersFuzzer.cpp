// A server's bytes as answer to any of the six operations. Whatever they are, the outcome is the same at
// every log level, nothing that the client has kept of it adds a header to a later request, and the next good
// call works.
//
// Input: a character that chooses operation and level, then the answer.
#include "Surroundings.h"

#include "RestText.h"

#include <algorithm>
#include <array>
#include <vector>

using log4cxx::Level;
using Platform::toRestText;
using VantryIntegrationApi::CVantryApi;
using web::http::http_request;
using Transcript = std::vector<std::string>;

namespace
{
constexpr std::string_view goodTicket =
    "HTTP/1.1 201 Created\r\nContent-Type: application/json\r\n\r\n{\"id\":7}";
constexpr std::string_view goodEmpty = "HTTP/1.1 200 OK\r\n\r\n";

void record(Transcript& transcript, CVantryApi& client, std::string exception)
{
    const auto& status = client.GetLastResponse();
    transcript.push_back(std::move(exception));
    transcript.push_back(std::to_string(status.httpStatusCode) + toRestText(status.errorMessage));
    transcript.push_back(toRestText(client.GetCreatedTicketID()));
    for (const auto& ticket : client.GetTicketList()) {
        transcript.push_back(
            toRestText(ticket.id + L'|' + ticket.name + L'|' + ticket.detail + L'|' + ticket.clientName));
    }
}

/// What a fresh client answers with the fuzzer's answer, then with good ones, and what it sends.
Transcript outcome(unsigned char operation, std::string_view answer, const log4cxx::LevelPtr& level)
{
    constexpr unsigned char closeSession = 1;
    constexpr unsigned char saveAttachment = 3;
    constexpr unsigned char createTicket = 4;
    Transcript transcript;
    fuzz::logAt(level);
    CVantryApi client;
    fuzz::setUp(client, L"http://127.0.0.1/rest", L"technician", L"wr\u00E9nch & hammer");
    const auto run = [&](unsigned char next, std::string_view bytes) {
        fuzz::setServer([&](const http_request& request) {
            const auto target = fuzz::targetOf(request);
            transcript.push_back(target);
            for (const auto& [name, value] : request.headers()) {
                fuzz::require(fuzz::isOneLine(value), "a header of more than one line: " + name);
                transcript.push_back(name == "Content-Type" ? name : name + value); // a boundary is the time
            }
            return fuzz::responseOf(fuzz::withEcho(bytes, target));
        });
        record(transcript, client, fuzz::runOperation(client, next));
    };
    run(operation, answer);
    run(saveAttachment, goodEmpty);
    run(closeSession, goodEmpty);
    fuzz::require(client.GetLastResponse().httpStatusCode == 200, "a session that cannot be closed");
    run(createTicket, goodTicket);
    fuzz::require(client.GetCreatedTicketID() == L"7", "the next good call does not work");
    fuzz::requireSecrecy();
    return transcript;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::array levels{Level::getTrace(), Level::getDebug(), Level::getInfo(), Level::getError()};
    const std::string_view answer(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto logged = outcome(data[0], answer, levels.at(data[0] / 6 % levels.size()));
    const auto unlogged = outcome(data[0], answer, Level::getOff());
    const auto [one, other] = std::mismatch(logged.begin(), logged.end(), unlogged.begin(), unlogged.end());
    fuzz::require(one == logged.end() && other == unlogged.end(),
                  "the log level changes the outcome: " + (one == logged.end() ? "" : *one) + " or " +
                      (other == unlogged.end() ? "" : *other));
    return 0;
}
