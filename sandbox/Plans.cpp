#include "Plans.h"

#include "Encoding.h"
#include "Target.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <map>
#include <string_view>

namespace sandbox
{
namespace
{
constexpr std::uint64_t longestWaitMs = 3'600'000;
constexpr std::uint64_t anyNumber = std::numeric_limits<std::uint64_t>::max();

[[noreturn]] void refuse(const std::string& why)
{
    throw HttpError(400, why);
}

std::string quoted(const std::string& name)
{
    return '"' + name + '"';
}

std::string bytesOf(const std::string& base64)
{
    std::optional<std::string> bytes = fromBase64(base64);
    if (!bytes) {
        refuse("\"raw\" must be base64");
    }
    return *std::move(bytes);
}

/// The members of an order, all of them optional.
class Members
{
public:
    Members(const Json& order, std::initializer_list<std::string_view> known) : m_order(order)
    {
        if (!order.is_object()) {
            refuse("an object is expected instead of " + order.dump());
        }
        for (const auto& [name, value] : order.items()) {
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                refuse("there is no member " + quoted(name));
            }
        }
    }

    bool has(const char* name) const { return m_order.contains(name); }

    bool hasAny(std::initializer_list<const char*> names) const
    {
        return std::any_of(names.begin(), names.end(), [this](const char* name) { return has(name); });
    }

    const Json& operator[](const char* name) const { return m_order[name]; }

    std::optional<std::string> text(const char* name) const
    {
        return get<std::string>(name, &Json::is_string, "a string");
    }

    std::optional<bool> flag(const char* name) const
    {
        return get<bool>(name, &Json::is_boolean, "true or false");
    }

    std::optional<std::uint64_t> number(const char* name, std::uint64_t least, std::uint64_t most) const
    {
        const auto value = get<std::uint64_t>(name, &Json::is_number_unsigned, "a whole number");
        if (value && (*value < least || *value > most)) {
            refuse(quoted(name) + " must be from " + std::to_string(least) + " to " + std::to_string(most));
        }
        return value;
    }

    std::chrono::milliseconds wait(const char* name) const
    {
        return std::chrono::milliseconds(number(name, 0, longestWaitMs).value_or(0));
    }

    template <typename Value>
    std::optional<Value> oneOf(const char* name, const std::map<std::string, Value>& values) const
    {
        const std::optional<std::string> wanted = text(name);
        if (!wanted) {
            return std::nullopt;
        }
        const auto found = values.find(*wanted);
        if (found == values.end()) {
            refuse(quoted(name) + " cannot be " + quoted(*wanted));
        }
        return found->second;
    }

private:
    template <typename Value>
    std::optional<Value> get(const char* name, bool (Json::*is)() const noexcept, const char* expected) const
    {
        if (!has(name)) {
            return std::nullopt;
        }
        if (!(m_order[name].*is)()) {
            refuse(quoted(name) + " must be " + expected);
        }
        return m_order[name].get<Value>();
    }

    const Json& m_order;
};

std::vector<std::pair<std::string, std::string>> readHeaders(const Json& headers)
{
    if (!headers.is_object()) {
        refuse("\"headers\" must be an object");
    }
    std::vector<std::pair<std::string, std::string>> list;
    for (const auto& [name, value] : headers.items()) {
        if (!value.is_string()) {
            refuse("header " + quoted(name) + " must be a string");
        }
        list.emplace_back(name, value.get<std::string>());
    }
    return list;
}

std::vector<Step> readSteps(const Json& steps)
{
    if (!steps.is_array()) {
        refuse("\"steps\" must be an array");
    }
    std::vector<Step> list;
    for (const Json& step : steps) {
        const Members members(step, {"raw", "waitMs", "times"});
        list.push_back({bytesOf(members.text("raw").value_or("")), members.wait("waitMs"),
                        members.number("times", 0, anyNumber).value_or(1)});
    }
    return list;
}

/// What "raw" or "steps" and "then" make.
std::optional<Reply> readScript(const Members& members)
{
    static const std::map<std::string, Afterwards> ends{{"close", Afterwards::Close},
                                                        {"drop", Afterwards::Drop},
                                                        {"reset", Afterwards::Reset},
                                                        {"stay", Afterwards::Stay}};
    const bool hasRaw = members.has("raw");
    const bool hasSteps = members.has("steps");
    if (!hasRaw && !hasSteps) {
        if (members.has("then")) {
            refuse(R"("then" needs "raw" or "steps")");
        }
        return std::nullopt;
    }
    if ((hasRaw && hasSteps) || members.hasAny({"status", "reason", "headers", "body"}) ||
        (members.has("closeAfter") && members.hasAny({"steps", "then"}))) {
        refuse("members of more than one kind of answer");
    }
    Reply script;
    script.steps = hasRaw ? std::vector{Step{bytesOf(*members.text("raw"))}} : readSteps(members["steps"]);
    script.afterwards = members.oneOf("then", ends).value_or(Afterwards::Close);
    return script;
}

/// The bytes that faults of connections are made of.
constexpr std::string_view plainText = "HTTP/1.1 400 Bad Request\r\nContent-Type: text/plain\r\n"
                                       "Content-Length: 20\r\nConnection: close\r\n\r\nThis is plain HTTP.\n";
constexpr std::string_view handshakeFailure("\x15\x03\x03\x00\x02\x02\x28", 7);
constexpr std::string_view garbage("\x9e\x37\x00\xfb\x81\x0c\xd4\x62\xa5\x1f\xee\x00\x73\xc8\x04\x9b"
                                   "\x5a\xe1\x2d\xf6\x88\x13\xbf\x40\xd7\x6c\x91\x3e\xcb\x05\x72\xaa",
                                   32);
/// A record of 122 bytes with a ServerHello of 118, version 1.2, of which only the random number follows.
constexpr std::string_view halfHello("\x16\x03\x03\x00\x7a\x02\x00\x00\x76\x03\x03"
                                     "\x9e\x37\x00\xfb\x81\x0c\xd4\x62\xa5\x1f\xee\x00\x73\xc8\x04\x9b"
                                     "\x5a\xe1\x2d\xf6\x88\x13\xbf\x40\xd7\x6c\x91\x3e\xcb\x05\x72\xaa",
                                     43);

Misbehaviour answerWith(std::string_view bytes)
{
    return {true, {{{std::string(bytes)}}, Afterwards::Close}};
}

const std::map<std::string, Misbehaviour>& misbehaviours()
{
    static const std::map<std::string, Misbehaviour> all{
        {"close", {false, {{}, Afterwards::Close}}}, {"reset", {false, {{}, Afterwards::Reset}}},
        {"silent", {false, {{}, Afterwards::Stay}}}, {"plain", answerWith(plainText)},
        {"alert", answerWith(handshakeFailure)},     {"garbage", answerWith(garbage)},
        {"closeInHandshake", answerWith(halfHello)},
    };
    return all;
}

const std::map<std::string, CertificateKind>& certificateKinds()
{
    static const std::map<std::string, CertificateKind> all{
        {"expired", CertificateKind::Expired},     {"notYetValid", CertificateKind::NotYetValid},
        {"otherHost", CertificateKind::OtherHost}, {"selfSigned", CertificateKind::SelfSigned},
        {"unknownCa", CertificateKind::UnknownCa}, {"other", CertificateKind::Other},
    };
    return all;
}

bool fits(const PlannedAnswer& planned, const Request& request)
{
    return (!planned.method || *planned.method == view(request.method_string())) &&
           (!planned.path || *planned.path == pathOf(view(request.target())));
}
} // namespace

PlannedAnswer readPlannedAnswer(const Json& order)
{
    const Members members(order, {"method", "path", "delayMs", "status", "reason", "headers", "body", "raw",
                                  "closeAfter", "steps", "then"});
    PlannedAnswer planned;
    planned.method = members.text("method");
    planned.path = members.text("path");
    planned.delay = members.wait("delayMs");
    planned.script = readScript(members);
    planned.answer.status = static_cast<unsigned>(members.number("status", 100, 999).value_or(200));
    planned.answer.reason = members.text("reason");
    if (members.has("headers")) {
        planned.answer.headers = readHeaders(members["headers"]);
    }
    planned.answer.body = members.text("body").value_or("");
    planned.closeAfter = members.number("closeAfter", 0, anyNumber);
    return planned;
}

PlannedConnection readPlannedConnection(const Json& order)
{
    const Members members(order, {"secure", "skip", "fault", "certificate"});
    if (members.has("fault") == members.has("certificate")) {
        refuse(R"(either "fault" or "certificate" is expected)");
    }
    PlannedConnection planned;
    planned.secure = members.flag("secure");
    planned.skip = members.number("skip", 0, anyNumber).value_or(0);
    planned.misbehaviour = members.oneOf("fault", misbehaviours());
    if (members.has("certificate")) {
        if (planned.secure == false) {
            refuse("a connection without TLS has no certificate");
        }
        planned.secure = true;
        planned.certificate = *members.oneOf("certificate", certificateKinds());
    }
    return planned;
}

std::optional<PlannedAnswer> PlannedAnswers::take(const Request& request)
{
    const auto found =
        std::find_if(m_answers.begin(), m_answers.end(),
                     [&request](const PlannedAnswer& planned) { return fits(planned, request); });
    if (found == m_answers.end()) {
        return std::nullopt;
    }
    PlannedAnswer planned = std::move(*found);
    m_answers.erase(found);
    return planned;
}

std::optional<PlannedConnection> PlannedConnections::take(bool secure)
{
    const auto found =
        std::find_if(m_connections.begin(), m_connections.end(), [secure](const PlannedConnection& planned) {
            return planned.secure.value_or(secure) == secure;
        });
    if (found == m_connections.end()) {
        return std::nullopt;
    }
    if (found->skip > 0) {
        --found->skip;
        return std::nullopt;
    }
    PlannedConnection planned = std::move(*found);
    m_connections.erase(found);
    return planned;
}
} // namespace sandbox
