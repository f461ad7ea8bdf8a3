#include "faults/Fault.h"

#include "platform/PlatformSupport.h"
#include "support/Text.h"

#include "TAVIKVANTRYAPI.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace json = web::json;
using utility::conversions::to_string_t;

namespace
{
std::wstring textOf(const json::value& value)
{
    auto text = wide(value.as_string());
    // What JSON cannot hold: halves of a surrogate pair.
    boost::replace_all(text, L"{D800}", std::wstring(1, static_cast<wchar_t>(0xD800)));
    boost::replace_all(text, L"{DC00}", std::wstring(1, static_cast<wchar_t>(0xDC00)));
    return text;
}

std::vector<std::wstring> textsOf(const json::value& array)
{
    std::vector<std::wstring> texts;
    for (const auto& element : array.as_array()) {
        texts.push_back(textOf(element));
    }
    return texts;
}

/// Each character of the text is a byte. <<N*text>> is N times the text, # in it the number from 0 on.
std::string bytesOf(const json::value& value)
{
    std::string bytes;
    for (const auto character : textOf(value)) {
        bytes += static_cast<char>(character);
    }
    for (auto at = bytes.find("<<"); at != std::string::npos; at = bytes.find("<<", at)) {
        const auto star = bytes.find('*', at);
        const auto end = bytes.find(">>", star);
        const auto piece = bytes.substr(star + 1, end - star - 1);
        std::string all;
        for (int i = 0; i < std::stoi(bytes.substr(at + 2)); ++i) {
            all += boost::replace_all_copy(piece, "#", std::to_string(i));
        }
        bytes.replace(at, end + 2 - at, all);
    }
    return bytes;
}

class Row
{
public:
    explicit Row(const json::value& row) : m_row(row) {}

    const json::value* find(const char* name) const
    {
        const auto key = to_string_t(name);
        return m_row.has_field(key) ? &m_row.at(key) : nullptr;
    }

    std::string bytes(const char* name, const std::string& otherwise = "") const
    {
        const auto* const value = find(name);
        return value != nullptr ? bytesOf(*value) : otherwise;
    }

    int number(const char* name, int otherwise) const
    {
        const auto* const value = find(name);
        return value != nullptr ? value->as_integer() : otherwise;
    }

    std::vector<std::wstring> texts(const char* name) const
    {
        const auto* const value = find(name);
        return value != nullptr ? textsOf(*value) : std::vector<std::wstring>();
    }

    template <typename Read>
    auto optional(const char* name, const Read& read) const
    {
        const auto* const value = find(name);
        return value != nullptr ? std::optional(read(*value)) : std::nullopt;
    }

private:
    const json::value& m_row;
};

/// "raw" alone, or success with a "head", a "type" or JSON.
std::string answerBytes(const Row& row)
{
    if (row.find("raw") != nullptr) {
        return row.bytes("raw");
    }
    const auto body = row.bytes("json", row.bytes("body"));
    const auto head = row.bytes("head", "Content-Type: " + row.bytes("type", "application/json") +
                                            "\r\nContent-Length: " + std::to_string(body.size()));
    return "HTTP/1.1 {status}\r\n" + head + "\r\n\r\n" + body;
}

Step stepOf(const json::value& value)
{
    const Row row(value);
    return {answerBytes(row), row.number("waitMs", 0), static_cast<std::uint64_t>(row.number("times", 1))};
}

Script scriptOf(const json::value& value)
{
    const Row row(value);
    Script script{{}, row.bytes("then", "close")};
    if (const auto* const steps = row.find("steps")) {
        const auto& array = steps->as_array();
        std::transform(array.begin(), array.end(), std::back_inserter(script.steps), stepOf);
    } else if (const auto wait = row.number("eachMs", 0); wait != 0) {
        for (const auto byte : answerBytes(row)) {
            script.steps.push_back({std::string(1, byte), wait});
        }
    } else {
        script.steps.push_back({answerBytes(row)});
    }
    return script;
}

/// A number, or "usual" for success.
std::optional<int> statusOf(const json::value& value)
{
    return value.is_integer() ? std::optional(value.as_integer()) : std::nullopt;
}

std::map<std::wstring, std::function<void()>> callsOf(const Row& row)
{
    std::map<std::wstring, std::function<void()>> calls;
    if (const auto* const name = row.find("fileName")) {
        calls[L"SaveAttachment"] = [text = textOf(*name)] { SaveAttachment({"x", text}); };
    }
    if (const auto* const identifier = row.find("identifier")) {
        calls[L"RequestTicketList"] = [text = textOf(*identifier)] { RequestTicketList(text, Client); };
    }
    if (const auto note = row.texts("note"); !note.empty()) {
        calls[L"SaveTechNote"] = [note] { SaveTechNote({note[0], note[1], 1, true}); };
    }
    if (const auto ticket = row.texts("ticket"); !ticket.empty()) {
        calls[L"CreateTicket"] = [ticket] { CreateTicket({ticket[0], Client, ticket[1], ticket[2]}); };
    }
    return calls;
}

std::vector<Fault> readCatalogue()
{
    std::ifstream file(VANTRY_FAULTS);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    std::vector<Fault> faults;
    const auto sections = json::value::parse(to_string_t(text));
    for (const auto& section : sections.as_array()) {
        for (const auto& row : section.at(_XPLATSTR("faults")).as_array()) {
            Fault fault(row);
            if (!isWindows() || !fault.is("linuxOnly")) {
                faults.push_back(std::move(fault));
            }
        }
    }
    return faults;
}
} // namespace

Fault::Fault(const json::value& value)
{
    const Row row(value);
    name = row.bytes("name");
    over = row.bytes("over", "http");
    stage = row.bytes("stage", "exchange");
    answer = row.optional("answer", scriptOf);
    probe = row.optional("probe", scriptOf);
    connection = row.optional("connection", [](const auto& order) { return order; });
    endPoint = row.optional("endPoint", textOf);
    credentials = row.texts("credentials");
    host = row.bytes("host");
    calls = callsOf(row);
    only = row.texts("only");
    if (!calls.empty()) {
        only = {calls.begin()->first};
    }
    leaves = row.bytes("leaves");
    const auto* const windows = isWindows() ? row.find("windows") : nullptr;
    const auto* const status = windows != nullptr ? windows : row.find("gives");
    gives = status != nullptr ? statusOf(*status) : std::nullopt;
    text = row.optional("text", textOf).value_or(L"");
    if (const auto* const others = row.find("but")) {
        for (const auto& [operation, other] : others->as_object()) {
            but[wide(operation)] = statusOf(other);
        }
    }
    ticketId = row.optional("ticketId", textOf);
    tickets = row.optional("tickets",
                           [](const auto& count) { return static_cast<std::size_t>(count.as_integer()); });
    for (const auto& flag : row.texts("flags")) {
        flags.push_back(narrow(flag));
    }
}

bool Fault::is(const char* flag) const
{
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}

const std::vector<Fault>& catalogue()
{
    static const auto faults = readCatalogue();
    return faults;
}
