#include "Plans.h"

#include <boost/locale/encoding_utf.hpp>
#include <openssl/tls1.h>

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

/// The members of an order, all of them optional.
class Members
{
public:
    Members(const Json& order, std::initializer_list<std::string_view> known) : m_order(order)
    {
        for (const auto& [name, value] : order.get_ref<const Json::object_t&>()) {
            require(std::find(known.begin(), known.end(), name) != known.end(),
                    "there is no member \"" + name + '"');
        }
    }

    bool has(const char* name) const { return m_order.contains(name); }

    template <typename Value>
    std::optional<Value> get(const char* name) const
    {
        return has(name) ? std::optional(m_order[name].get<Value>()) : std::nullopt;
    }

    std::uint64_t number(const char* name, std::uint64_t least, std::uint64_t most,
                         std::uint64_t absent) const
    {
        if (!has(name)) {
            return absent;
        }
        const Json& value = m_order[name];
        require(value.is_number_unsigned() && value >= least && value <= most,
                '"' + std::string(name) + "\" must be a whole number in its range");
        return value;
    }

    std::chrono::milliseconds wait(const char* name) const
    {
        return std::chrono::milliseconds(number(name, 0, longestWaitMs, 0));
    }

    /// The value that the member's text names.
    template <typename Value>
    std::optional<Value> oneOf(const char* name, const std::map<std::string, Value>& values) const
    {
        const auto text = get<std::string>(name);
        if (!text) {
            return std::nullopt;
        }
        const auto found = values.find(*text);
        require(found != values.end(), '"' + std::string(name) + "\" cannot be \"" + *text + '"');
        return found->second;
    }

private:
    const Json& m_order;
};

const std::map<std::string, CertificateKind> certificateKinds{
    {"good", CertificateKind::Good},
    {"expired", CertificateKind::Expired},
    {"notYetValid", CertificateKind::NotYetValid},
    {"otherHost", CertificateKind::OtherHost},
    {"selfSigned", CertificateKind::SelfSigned},
    {"unknownCa", CertificateKind::UnknownCa},
    {"other", CertificateKind::Other},
};

const std::map<std::string, int> tlsVersions{{"1.1", TLS1_1_VERSION}, {"1.2", TLS1_2_VERSION}};

/// The bytes whose values are the code points of a text.
std::string toBytes(const std::string& text)
{
    std::string bytes;
    for (const char32_t character : boost::locale::conv::utf_to_utf<char32_t>(text)) {
        require(character <= 0xFF, "a character of \"raw\" is no byte");
        bytes += static_cast<char>(character);
    }
    return bytes;
}

std::vector<Step> readSteps(const Json& steps)
{
    std::vector<Step> list;
    for (const Json& step : steps.get_ref<const Json::array_t&>()) {
        const Members members(step, {"raw", "waitMs", "times", "renegotiate"});
        list.push_back({toBytes(members.get<std::string>("raw").value_or("")),
                        members.wait("waitMs"),
                        members.number("times", 0, anyNumber, 1),
                        {},
                        members.oneOf("renegotiate", certificateKinds)});
    }
    return list;
}

const std::map<std::string, Afterwards> ends{{"close", Afterwards::Close},
                                             {"drop", Afterwards::Drop},
                                             {"reset", Afterwards::Reset},
                                             {"stay", Afterwards::Stay}};

/// The reply that "steps" and "then" describe.
std::optional<Reply> readScript(const Members& members, const Json& order)
{
    if (!members.has("steps") && !members.has("then")) {
        return std::nullopt;
    }
    require(!members.has("status") && !members.has("headers") && !members.has("body"),
            "there are members of more than one kind of answer");
    return Reply{readSteps(order.at("steps")), members.oneOf("then", ends).value_or(Afterwards::Close)};
}

const std::string noise("\x9e\x37\x00\xfb\x81\x0c\xd4\x62\xa5\x1f\xee\x00\x73\xc8\x04\x9b"
                        "\x5a\xe1\x2d\xf6\x88\x13\xbf\x40\xd7\x6c\x91\x3e\xcb\x05\x72\xaa",
                        32);
const std::string handshakeFailure("\x15\x03\x03\x00\x02\x02\x28", 7);
/// A record of 122 bytes with a ServerHello of 118, version 1.2, of which only the random number follows.
const std::string helloStart("\x16\x03\x03\x00\x7a\x02\x00\x00\x76\x03\x03", 11);

const std::map<std::string, Reply> misbehaviours{
    {"close", {{}, Afterwards::Close}},
    {"reset", {{}, Afterwards::Reset}},
    {"silent", {{}, Afterwards::Stay}},
    {"plain",
     {{{"HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"}}, Afterwards::Close}},
    {"alert", {{{handshakeFailure}}, Afterwards::Close}},
    {"garbage", {{{noise}}, Afterwards::Close}},
    {"closeInHandshake", {{{helloStart + noise}}, Afterwards::Close}},
};
} // namespace

PlannedAnswer readPlannedAnswer(const Json& order, const std::shared_ptr<const bool>& released)
{
    const Members members(order,
                          {"skip", "path", "delayMs", "held", "status", "headers", "body", "steps", "then"});
    PlannedAnswer planned;
    planned.skip = members.number("skip", 0, anyNumber, 0);
    planned.path = members.get<std::string>("path");
    planned.before.wait = members.wait("delayMs");
    planned.before.released = members.get<bool>("held").value_or(false) ? released : nullptr;
    planned.script = readScript(members, order);
    planned.answer.status = static_cast<unsigned>(members.number("status", 100, 999, 200));
    planned.answer.headers = members.get<Headers>("headers").value_or(Headers());
    planned.answer.body = members.get<std::string>("body").value_or("");
    return planned;
}

PlannedConnection readPlannedConnection(const Json& order, const std::shared_ptr<const bool>& released)
{
    const Members members(order, {"skip", "secure", "fault", "held", "certificate", "tls"});
    const bool isTls = members.has("certificate") || members.has("tls");
    require(members.has("fault") != (isTls || members.has("held")),
            R"(either "fault", or one of "held", "certificate" and "tls", is expected)");
    PlannedConnection planned;
    planned.skip = members.number("skip", 0, anyNumber, 0);
    planned.secure = members.get<bool>("secure");
    planned.released = members.get<bool>("held").value_or(false) ? released : nullptr;
    planned.misbehaviour = members.oneOf("fault", misbehaviours);
    planned.certificate = members.oneOf("certificate", certificateKinds).value_or(CertificateKind::Good);
    planned.tlsVersion = members.oneOf("tls", tlsVersions);
    if (isTls) {
        require(planned.secure.value_or(true),
                "a connection without TLS has neither certificate nor version");
        planned.secure = true;
    }
    return planned;
}
} // namespace sandbox
