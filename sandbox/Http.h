#pragma once

#include "Certificates.h"

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sandbox
{
using Json = nlohmann::ordered_json;
using Request = boost::beast::http::request<boost::beast::http::string_body>;
using Headers = std::map<std::string, std::string>;

struct Answer
{
    unsigned status = 200;
    Headers headers;
    std::string body;
};

/// What a connection does after the last byte of a reply.
enum class Afterwards
{
    KeepAlive,
    Close, ///< in good order: a secure connection says goodbye first
    Drop,  ///< closes the socket the way a broken server does
    Reset, ///< the client sees a connection reset
    Stay   ///< open and silent until the client goes
};

struct Step
{
    std::string bytes;
    std::chrono::milliseconds wait{0};                          ///< before each time
    std::uint64_t times = 1;                                    ///< 0: without end, until the client goes
    std::shared_ptr<const bool> released = {};                  ///< whether it may begin; null: it may
    std::optional<CertificateKind> renegotiated = std::nullopt; ///< by TLS 1.2, after the bytes
};

/// What a connection writes.
struct Reply
{
    std::vector<Step> steps;
    Afterwards afterwards = Afterwards::KeepAlive;
};

/// A request that cannot be served; the router turns it into the answer.
struct HttpError : std::runtime_error
{
    HttpError(unsigned code, const std::string& message) : std::runtime_error(message), status(code) {}

    unsigned status;
};

/// @throws HttpError unless it holds
inline void require(bool holds, const std::string& otherwise, unsigned status = 400)
{
    if (!holds) {
        throw HttpError(status, otherwise);
    }
}

inline std::string_view view(boost::beast::string_view text)
{
    return {text.data(), text.size()};
}

Answer jsonAnswer(unsigned status, const Json& value);
Answer errorAnswer(unsigned status, const std::string& message, const std::string& member = "error");
Answer textAnswer(const std::string& contentType, std::string body);

/// With the status code's standard phrase, and what HTTP asks for added to the headers.
Reply replyTo(const Request& request, const Answer& answer);
} // namespace sandbox
