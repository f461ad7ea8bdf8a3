// Text of the host in a query and back: what the server decodes is what the host gave, and no line shows the
// password, however it is written.
//
// Input: for each text whether it may be malformed, and its characters.
#include "Surroundings.h"

#include "Addresses.h"
#include "RestText.h"
#include "Utf8.h"
#include "sandbox/Parsing.h"

#include <boost/algorithm/string/erase.hpp>
#include <fuzzer/FuzzedDataProvider.h>

#include <stdexcept>

using Platform::toUtf8;
using sandbox::parameterOf;
using VantryIntegrationApi::CVantryApi;
namespace Utils = VantryIntegrationApi::Utils;

namespace
{
std::wstring consumeText(FuzzedDataProvider& input)
{
    const bool raw = input.ConsumeBool();
    const auto bytes = input.ConsumeRandomLengthString(200);
    if (!raw) {
        return Platform::fromUtf8(bytes);
    }
    std::wstring text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[at]) * 256 +
                                     static_cast<unsigned char>(bytes[at + 1]));
    }
    return text;
}

bool isWellFormed(const std::wstring& text)
{
    return Utils::shownInQuery(text).has_value();
}

void requireSame(const std::optional<std::string>& decoded, const std::wstring& given)
{
    fuzz::require(decoded && *decoded == toUtf8(given), "the server decodes another text");
}

/// What is written with as little encoding as possible means to a server what it meant without any.
void tryMinimalEncoding(const std::wstring& text)
{
    if (text.find(L'#') == std::wstring::npos) {
        fuzz::require(parameterOf("?a=" + Utils::minimallyEncoded(text), "a") ==
                          parameterOf("?a=" + toUtf8(text), "a"),
                      "minimal encoding changes the meaning");
    }
}

/// The target of the one request that creates a session; empty if none is sent.
std::string targetOfSession(CVantryApi& client)
{
    std::string target;
    fuzz::setServer([&target](const web::http::http_request& request) {
        target = fuzz::targetOf(request);
        return fuzz::responseOf(
            fuzz::withEcho("HTTP/1.1 200 \1\r\nContent-Type: text/plain\r\n\r\n\"\1\"", target));
    });
    client.wrpCreateSession();
    return target;
}

void tryList(CVantryApi& client, const std::wstring& identifier)
{
    try {
        client.wrpRequestTicketList(identifier, Client);
    } catch (const web::uri_exception& e) {
        // The identifier is the host's own, which may hold the password.
        fuzz::requireSecrecy(boost::erase_all_copy(std::string(e.what()), toUtf8(identifier)));
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto userName = consumeText(input);
    const auto password = consumeText(input);
    const auto other = consumeText(input);

    fuzz::logAt(log4cxx::Level::getTrace());
    CVantryApi client;
    fuzz::setUp(client, L"http://127.0.0.1/rest", userName, password);
    const auto target = targetOfSession(client);
    fuzz::require(target.empty() == !(isWellFormed(userName) && isWellFormed(password)),
                  "malformed text is sent, or text is not");
    if (!target.empty()) {
        requireSame(parameterOf(target, "username"), userName);
        requireSame(parameterOf(target, "password"), password);
    }
    tryList(client, other);
    fuzz::requireSecrecy();
    if (isWellFormed(other)) {
        tryMinimalEncoding(other);
    }
    if (const auto shown = Utils::shownInQuery(password).value_or(L""); !shown.empty()) {
        const auto element = L"password=" + shown;
        const auto masked = Lumo::withoutPassword(userName + element + other + element);
        fuzz::require(masked.find(element) == std::wstring::npos, "a line would show the password");
    }
    return 0;
}
