#include "faults/Fault.h"

#include "platform/PlatformSupport.h"
#include "support/Text.h"

#include "TAVIKVANTRYAPI.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <fstream>
#include <set>
#include <stdexcept>

using nlohmann::json;

namespace
{
std::wstring textOf(const json& value)
{
    auto text = wide(value.get<std::string>());
    // What JSON cannot hold: halves of a surrogate pair.
    boost::replace_all(text, L"{D800}", std::wstring(1, static_cast<wchar_t>(0xD800)));
    boost::replace_all(text, L"{DC00}", std::wstring(1, static_cast<wchar_t>(0xDC00)));
    return text;
}

/// Each character of the text is a byte. <<N*text>> is N times the text, # in it the number from 0 on.
std::string bytesOf(const json& value)
{
    auto bytes = toBytes(textOf(value));
    for (auto at = bytes.find("<<"); at != std::string::npos; at = bytes.find("<<", at)) {
        const auto star = bytes.find('*', at);
        const auto end = bytes.find(">>", star);
        const auto piece = bytes.substr(star + 1, end - star - 1);
        const auto count = std::stoi(bytes.substr(at + 2));
        const bool numbered = piece.find('#') != std::string::npos;
        std::string all;
        for (int i = 0; i < count; ++i) {
            all += numbered ? boost::replace_all_copy(piece, "#", std::to_string(i)) : piece;
        }
        bytes.replace(at, end + 2 - at, all);
    }
    return bytes;
}

std::string bytesOf(const json& row, const char* name, const std::string& otherwise = "")
{
    return row.contains(name) ? bytesOf(row[name]) : otherwise;
}

template <typename Read>
auto optional(const json& row, const char* name, const Read& read)
{
    return row.contains(name) ? std::optional(read(row[name])) : std::nullopt;
}

std::vector<std::wstring> textsOf(const json& row, const char* name)
{
    std::vector<std::wstring> texts;
    for (const auto& element : row.value(name, json::array())) {
        texts.push_back(textOf(element));
    }
    return texts;
}

/// "raw" alone, or success with a "head", a "type" or JSON.
std::string answerBytes(const json& row)
{
    const auto body = bytesOf(row, "json", bytesOf(row, "body"));
    const auto head = bytesOf(row, "head",
                              "Content-Type: " + bytesOf(row, "type", "application/json") +
                                  "\r\nContent-Length: " + std::to_string(body.size()));
    return bytesOf(row, "raw", "HTTP/1.1 {status}\r\n" + head + "\r\n\r\n" + body);
}

Script scriptOf(const json& row)
{
    Script script{{}, bytesOf(row, "then", "close")};
    if (const int wait = row.value("eachMs", 0); wait != 0) {
        for (const auto byte : answerBytes(row)) {
            script.steps.push_back({std::string(1, byte), wait});
        }
        return script;
    }
    for (const auto& step : row.value("steps", json::array({row}))) {
        script.steps.push_back({answerBytes(step), step.value("waitMs", 0),
                                step.value("times", std::uint64_t(1)), step.value("renegotiate", "")});
    }
    return script;
}

/// A number, or "usual" for success.
std::optional<int> statusOf(const json& value)
{
    return value.is_number() ? std::optional(value.get<int>()) : std::nullopt;
}

/// The name of the operation that the row gives a record of its own, and the call with it.
std::pair<std::wstring, std::function<void()>> ownCallOf(const json& row)
{
    if (const auto name = optional(row, "fileName", textOf)) {
        return {L"SaveAttachment", [name] { SaveAttachment({"x", *name}); }};
    }
    if (const auto identifier = optional(row, "identifier", textOf)) {
        return {L"RequestTicketList", [identifier] { RequestTicketList(*identifier, Client); }};
    }
    if (const auto note = textsOf(row, "note"); !note.empty()) {
        return {L"SaveTechNote", [note] { SaveTechNote({note[0], note[1], 1, true}); }};
    }
    if (const auto ticket = textsOf(row, "ticket"); !ticket.empty()) {
        return {L"CreateTicket", [ticket] { CreateTicket({ticket[0], Client, ticket[1], ticket[2]}); }};
    }
    return {};
}

/// @throws std::invalid_argument for a word that nothing reads: the row would test something else than it
/// says
void requireKnown(const std::string& word, const std::set<std::string>& known)
{
    if (known.count(word) == 0) {
        throw std::invalid_argument("the catalogue of faults has an unknown word: " + word);
    }
}

void requireKnownWords(const json& row)
{
    for (const auto& [member, value] : row.items()) {
        requireKnown(member, {"answer", "but",     "connection", "credentials", "endPoint", "fileName",
                              "flags",  "gives",   "host",       "identifier",  "leaves",   "name",
                              "note",   "only",    "over",       "probe",       "stage",    "text",
                              "ticket", "tickets", "ticketId",   "what",        "windows"});
    }
    for (const auto& flag : row.value("flags", json::array())) {
        requireKnown(flag, {"costly", "downloads", "large", "linuxOnly", "losesWindow", "silent",
                            "slowOnWindows", "text", "unsanitized", "waits", "withoutWindow"});
    }
}

std::vector<Fault> readCatalogue()
{
    std::ifstream file("tests/faults/faults.json");
    std::vector<Fault> faults;
    std::size_t number = 0;
    for (const auto& section : json::parse(file)) {
        for (const auto& row : section["faults"]) {
            requireKnownWords(row);
            Fault fault(row);
            fault.number = number++;
            fault.inTurn = section.value("inTurn", false);
            if (!isWindows || !fault.is("linuxOnly")) {
                faults.push_back(std::move(fault));
            }
        }
    }
    return faults;
}
} // namespace

Fault::Fault(const json& row)
    : name(row["name"]), over(row.value("over", "http")), stage(row.value("stage", "exchange")),
      answer(optional(row, "answer", scriptOf)), probe(optional(row, "probe", scriptOf)),
      connection(optional(row, "connection", [](const auto& order) { return order; })),
      endPoint(optional(row, "endPoint", textOf)), credentials(textsOf(row, "credentials")),
      host(row.value("host", "")), only(textsOf(row, "only")), leaves(row.value("leaves", "")),
      isOfWine(isWindows && row.contains("windows")),
      gives(statusOf(row.value(isOfWine ? "windows" : "gives", json()))),
      text(optional(row, "text", textOf).value_or(L"")), ticketId(optional(row, "ticketId", textOf)),
      tickets(optional(row, "tickets", [](const auto& count) { return count.template get<std::size_t>(); })),
      flags(row.value("flags", std::vector<std::string>()))
{
    if (const auto own = ownCallOf(row); own.second) {
        only = {own.first};
        ownCall = own.second;
    }
    const auto others = row.value("but", json::object());
    for (const auto& [operation, other] : others.items()) {
        but[wide(operation)] = statusOf(other);
    }
}

bool Fault::is(const char* flag) const
{
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}

bool Fault::isShared() const
{
    return inTurn && host.empty() && only.empty() && but.empty() && !ticketId && !tickets;
}

const std::vector<Fault>& catalogue()
{
    static const auto faults = readCatalogue();
    return faults;
}
