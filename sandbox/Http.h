#pragma once

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sandbox
{

using Json = nlohmann::ordered_json;
using Request = boost::beast::http::request<boost::beast::http::string_body>;

struct Answer
{
    unsigned status = 200;
    std::optional<std::string> reason; // absent: the status code's standard phrase
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
};

// A request that cannot be served; the router turns it into the answer.
class HttpError : public std::runtime_error
{
public:
    HttpError(unsigned status, const std::string& message) : std::runtime_error(message), m_status(status) {}

    unsigned status() const { return m_status; }

private:
    unsigned m_status;
};

inline std::string_view view(boost::beast::string_view text)
{
    return {text.data(), text.size()};
}

// Throws HttpError 400 for a body that is no JSON.
Json parseJson(std::string_view text);

Answer jsonAnswer(unsigned status, const Json& value);
Answer errorAnswer(unsigned status, const std::string& message, const std::string& member = "error");
Answer textAnswer(const std::string& contentType, std::string body);

// The connection goes on after an answer to this request.
bool keepsAlive(const Request& request);

// The answer's bytes. Headers of the answer's own win over those that are added here.
std::string serialize(const Answer& answer, bool keepAlive, bool withBody = true);

} // namespace sandbox
