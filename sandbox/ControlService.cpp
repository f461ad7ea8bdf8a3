#include "Parsing.h"
#include "Service.h"

#include <boost/locale/encoding_utf.hpp>

#include <utility>

namespace sandbox
{
namespace
{
namespace http = boost::beast::http;

const std::string attachments = "/attachments/";

/// Bytes in JSON text: each is the code point of its value.
std::string toText(std::string_view bytes)
{
    std::u32string text;
    for (const unsigned char byte : bytes) {
        text += byte;
    }
    return boost::locale::conv::utf_to_utf<char>(text);
}

Json toJson(const std::vector<ReceivedRequest>& requests)
{
    Json list = Json::array();
    for (const auto& received : requests) {
        list.push_back({{"secure", received.secure},
                        {"method", view(received.request.method_string())},
                        {"target", view(received.request.target())},
                        {"raw", toText(received.head + received.request.body())}});
    }
    return list;
}

Answer contentOf(const std::map<std::string, std::string>& all, const Request& request)
{
    const auto found = all.find(std::string(pathOf(view(request.target())).substr(attachments.size())));
    require(found != all.end(), "there is no such attachment", 404);
    return textAnswer("application/octet-stream", found->second);
}

Route file(const std::string& path, const std::string& contentType, std::string content)
{
    return {http::verb::get, path, [contentType, content = std::move(content)](const Request&) {
                return textAnswer(contentType, content);
            }};
}

/// A route that does something and answers 204.
template <typename Do>
Route order(http::verb method, const std::string& path, Do perform)
{
    return {method, path, [perform](const Request& request) {
                perform(request);
                return Answer{204, {}, {}};
            }};
}
} // namespace

std::vector<Route> controlRoutes(SharedState& state, CertificateAuthority& authority)
{
    return {
        {http::verb::get, "/requests",
         [&state](const Request&) { return jsonAnswer(200, toJson(state.requests)); }},
        order(http::verb::delete_, "/requests", [&state](const Request&) { state.requests.clear(); }),
        order(http::verb::post, "/answers",
              [&state](const Request& request) {
                  state.plannedAnswers.add(readPlannedAnswer(Json::parse(request.body()), state.released));
              }),
        order(http::verb::post, "/release",
              [&state](const Request&) {
                  *std::exchange(state.released, std::make_shared<bool>(false)) = true;
              }),
        order(http::verb::post, "/connections",
              [&state](const Request& request) {
                  state.plannedConnections.add(
                      readPlannedConnection(Json::parse(request.body()), state.released));
              }),
        order(http::verb::delete_, "/plans",
              [&state](const Request&) {
                  state.plannedAnswers = {};
                  state.plannedConnections = {};
              }),
        order(http::verb::post, "/reset", [&state](const Request&) { state = SharedState(); }),
        {http::verb::get, "/state", [&state](const Request&) { return jsonAnswer(200, state.helpDesk); }},
        {http::verb::get, attachments + '*',
         [&state](const Request& request) { return contentOf(state.attachments, request); }},
        file("/ca.der", "application/pkix-cert", authority.der()),
        file("/leaf.der", "application/pkix-cert", authority.certificate(CertificateKind::Good).der),
        file("/crl.der", "application/pkix-crl", authority.revocationListDer()),
    };
}
} // namespace sandbox
