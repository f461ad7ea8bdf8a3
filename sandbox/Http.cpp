#include "Http.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/beast/http/status.hpp>

#include <algorithm>

namespace sandbox
{

namespace
{

namespace http = boost::beast::http;

constexpr int deepestJson = 16; // copying and writing JSON is recursive

std::string standardReason(unsigned status)
{
    const http::status known = http::int_to_status(status);
    return known == http::status::unknown ? std::string() : std::string(view(http::obsolete_reason(known)));
}

bool allowsBody(unsigned status)
{
    return status >= 200 && status != 204 && status != 304;
}

bool hasHeader(const Answer& answer, std::string_view name)
{
    return std::any_of(answer.headers.begin(), answer.headers.end(),
                       [name](const auto& header) { return boost::iequals(header.first, name); });
}

} // namespace

Json parseJson(std::string_view text)
{
    const auto checkDepth = [](int depth, Json::parse_event_t /*event*/, Json& /*parsed*/) {
        if (depth > deepestJson) {
            throw HttpError(400, "the JSON body is nested too deeply");
        }
        return true;
    };
    Json value = Json::parse(text, checkDepth, false);
    if (value.is_discarded()) {
        throw HttpError(400, "the body is not JSON");
    }
    return value;
}

Answer jsonAnswer(unsigned status, const Json& value)
{
    // File names and targets may hold any byte; JSON text may not.
    std::string body = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    return {status, std::nullopt, {{"Content-Type", "application/json"}}, std::move(body)};
}

Answer errorAnswer(unsigned status, const std::string& message, const std::string& member)
{
    return jsonAnswer(status, Json{{member, message}});
}

Answer textAnswer(const std::string& contentType, std::string body)
{
    return {200, std::nullopt, {{"Content-Type", contentType}}, std::move(body)};
}

bool keepsAlive(const Request& request)
{
    return request.version() == 11 && request.keep_alive();
}

std::string serialize(const Answer& answer, bool keepAlive, bool withBody)
{
    std::string bytes = "HTTP/1.1 " + std::to_string(answer.status) + ' ';
    bytes += answer.reason ? *answer.reason : standardReason(answer.status);
    bytes += "\r\n";
    for (const auto& [name, value] : answer.headers) {
        bytes.append(name).append(": ").append(value).append("\r\n");
    }
    if (allowsBody(answer.status) && !hasHeader(answer, "Content-Length")) {
        bytes += "Content-Length: " + std::to_string(answer.body.size()) + "\r\n";
    }
    if (!keepAlive && !hasHeader(answer, "Connection")) {
        bytes += "Connection: close\r\n";
    }
    bytes += "\r\n";
    if (withBody && allowsBody(answer.status)) {
        bytes += answer.body;
    }
    return bytes;
}

} // namespace sandbox
