#include "Http.h"

#include <boost/beast/http/status.hpp>
#include <boost/beast/http/verb.hpp>

namespace sandbox
{
namespace
{
namespace http = boost::beast::http;

std::string standardReason(unsigned status)
{
    const http::status known = http::int_to_status(status);
    return known == http::status::unknown ? std::string() : std::string(view(http::obsolete_reason(known)));
}
} // namespace

Answer jsonAnswer(unsigned status, const Json& value)
{
    // File names and targets may hold any byte; JSON text may not.
    std::string body = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    return {status, {{"Content-Type", "application/json"}}, std::move(body)};
}

Answer errorAnswer(unsigned status, const std::string& message, const std::string& member)
{
    return jsonAnswer(status, Json{{member, message}});
}

Answer textAnswer(const std::string& contentType, std::string body)
{
    return {200, {{"Content-Type", contentType}}, std::move(body)};
}

Reply replyTo(const Request& request, const Answer& answer)
{
    const bool keepAlive = request.version() == 11 && request.keep_alive();
    const bool allowsBody = answer.status >= 200 && answer.status != 204 && answer.status != 304;
    std::string bytes =
        "HTTP/1.1 " + std::to_string(answer.status) + ' ' + standardReason(answer.status) + "\r\n";
    for (const auto& [name, value] : answer.headers) {
        bytes.append(name).append(": ").append(value).append("\r\n");
    }
    if (allowsBody) {
        bytes += "Content-Length: " + std::to_string(answer.body.size()) + "\r\n";
    }
    if (!keepAlive) {
        bytes += "Connection: close\r\n";
    }
    bytes += "\r\n";
    if (allowsBody && request.method() != http::verb::head) {
        bytes += answer.body;
    }
    return {{{std::move(bytes)}}, keepAlive ? Afterwards::KeepAlive : Afterwards::Close};
}
} // namespace sandbox
