#include "support/Sandbox.h"

#include "support/Text.h"

#include <boost/range/algorithm_ext/erase.hpp>
#include <cpprest/http_client.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <sstream>

using nlohmann::json;
using utility::conversions::to_string_t;

namespace
{
std::string environment(const std::string& name)
{
    const char* value = std::getenv(("VANTRY_SANDBOX_" + name).c_str());
    if (value == nullptr) {
        throw std::runtime_error("no VANTRY_SANDBOX_" + name +
                                 ": run the tests through vantry-sandbox (ctest does)");
    }
    return value;
}

Request parsed(bool secure, const std::string& raw)
{
    static const std::set<std::string> ofTheConnection{"Host", "User-Agent", "Connection", "Accept-Encoding"};
    const auto end = raw.find("\r\n\r\n");
    Request request{secure, "", "", {}, raw.substr(end + 4)};
    std::istringstream head(raw.substr(0, end + 2));
    head >> request.method >> request.target;
    std::string line;
    std::getline(head, line);
    while (std::getline(head, line)) {
        const auto colon = line.find(':');
        const auto value = line.find_first_not_of(' ', colon + 1);
        const auto name = line.substr(0, colon);
        if (ofTheConnection.count(name) == 0) {
            request.headers[name] = line.substr(value, line.size() - value - 1); // without the CR
        }
    }
    return request;
}
} // namespace

Answer::Answer(int status, const std::string& body, const std::string& contentType)
    : m_plan{{"status", status}, {"body", body}}
{
    if (!contentType.empty()) {
        header("Content-Type", contentType);
    }
}

Answer& Answer::header(const std::string& name, const std::string& value)
{
    m_plan["headers"][name] = value;
    return *this;
}

Answer Answer::bytes(const std::string& raw)
{
    return script({{raw}}, "close");
}

Answer Answer::script(const std::vector<Step>& steps, const std::string& then)
{
    auto orders = json::array();
    for (const auto& step : steps) {
        const std::basic_string_view bytes(reinterpret_cast<const unsigned char*>(step.bytes.data()),
                                           step.bytes.size());
        orders.push_back(
            {{"raw", narrow({bytes.begin(), bytes.end()})}, {"waitMs", step.waitMs}, {"times", step.times}});
        if (!step.renegotiate.empty()) {
            orders.back()["renegotiate"] = step.renegotiate;
        }
    }
    return Answer(json{{"steps", orders}, {"then", then}});
}

Sandbox::Sandbox()
    : http(wide(environment("HTTP"))), https(wide(environment("HTTPS"))), user(wide(environment("USER"))),
      password(wide(environment("PASSWORD"))), authorityFile(environment("CA_FILE")),
      m_control(to_string_t(environment("CONTROL")))
{
    reset(); // it may have served another test before
}

std::vector<Request> Sandbox::allRequests() const
{
    std::vector<Request> requests;
    for (const auto& entry : json::parse(get("/requests"))) {
        requests.push_back(
            parsed(entry.at("secure").get<bool>(), toBytes(wide(entry.at("raw").get<std::string>()))));
    }
    return requests;
}

std::vector<Request> Sandbox::requests() const
{
    auto requests = allRequests();
    boost::remove_erase_if(requests, [](const auto& request) {
        return request.method == "GET" && request.target == "/"; // a probe
    });
    return requests;
}

std::size_t Sandbox::probes() const
{
    return allRequests().size() - requests().size();
}

Request Sandbox::onlyRequest() const
{
    const auto sent = requests();
    EXPECT_EQ(sent.size(), 1U) << "requests received";
    return sent.size() == 1 ? sent.front() : Request{};
}

std::string Sandbox::control(const std::string& method, const std::string& path,
                             const std::string& body) const
{
    web::http::http_request request(to_string_t(method));
    request.set_request_uri(to_string_t(path));
    if (!body.empty()) {
        request.set_body(body, "application/json");
    }
    // One request each: a client that has kept a connection may try to connect it again when a name's first
    // address refuses.
    web::http::client::http_client client(m_control);
    const auto response = client.request(request).get();
    const auto answer = response.extract_vector().get();
    if (response.status_code() >= 300) {
        throw std::runtime_error("the sandbox refused " + path + ": " +
                                 std::string(answer.begin(), answer.end()));
    }
    return {answer.begin(), answer.end()};
}
