#include "support/Sandbox.h"

#include "support/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>

using utility::conversions::to_string_t;
namespace json = web::json;

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

bool belongsToConnection(const std::string& header)
{
    constexpr std::array names{"Host", "User-Agent", "Connection", "Accept-Encoding"};
    return std::find(names.begin(), names.end(), header) != names.end();
}

Request parsed(bool secure, const std::string& raw)
{
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
        if (!belongsToConnection(name)) {
            request.headers[name] = line.substr(value, line.size() - value - 1); // without the CR
        }
    }
    return request;
}

bool isProbe(const Request& request)
{
    return request.method == "GET" && request.target == "/";
}
} // namespace

Answer::Answer(int status, const std::string& body, const std::string& contentType)
{
    m_plan[_XPLATSTR("status")] = json::value(status);
    m_plan[_XPLATSTR("body")] = json::value(to_string_t(body));
    if (!contentType.empty()) {
        header("Content-Type", contentType);
    }
}

Answer& Answer::of(const std::string& method)
{
    m_plan[_XPLATSTR("method")] = json::value(to_string_t(method));
    return *this;
}

Answer& Answer::to(const std::string& path)
{
    m_plan[_XPLATSTR("path")] = json::value(to_string_t(path));
    return *this;
}

Answer& Answer::header(const std::string& name, const std::string& value)
{
    m_plan[_XPLATSTR("headers")][to_string_t(name)] = json::value(to_string_t(value));
    return *this;
}

Answer& Answer::after(int milliseconds)
{
    m_plan[_XPLATSTR("delayMs")] = json::value(milliseconds);
    return *this;
}

Answer& Answer::cutAfter(int bytes)
{
    m_plan[_XPLATSTR("closeAfter")] = json::value(bytes);
    return *this;
}

Answer Answer::bytes(const std::string& raw)
{
    return script({{raw}}, "close");
}

Answer Answer::script(const std::vector<Step>& steps, const std::string& then)
{
    std::vector<json::value> orders;
    for (const auto& step : steps) {
        auto& order = orders.emplace_back(json::value::object());
        order[_XPLATSTR("raw")] =
            json::value(utility::conversions::to_base64({step.bytes.begin(), step.bytes.end()}));
        order[_XPLATSTR("waitMs")] = json::value(step.waitMs);
        order[_XPLATSTR("times")] = json::value(step.times);
    }
    Answer answer(200);
    answer.m_plan = json::value::object();
    answer.m_plan[_XPLATSTR("steps")] = json::value::array(std::move(orders));
    answer.m_plan[_XPLATSTR("then")] = json::value(to_string_t(then));
    return answer;
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
    const auto recorded = json::value::parse(to_string_t(get("/requests")));
    for (const auto& entry : recorded.as_array()) {
        const auto raw = utility::conversions::from_base64(entry.at(_XPLATSTR("raw")).as_string());
        requests.push_back(parsed(entry.at(_XPLATSTR("secure")).as_bool(), {raw.begin(), raw.end()}));
    }
    return requests;
}

std::vector<Request> Sandbox::requests() const
{
    auto requests = allRequests();
    requests.erase(std::remove_if(requests.begin(), requests.end(), isProbe), requests.end());
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

void Sandbox::forgetRequests() const
{
    control(web::http::methods::DEL, "/requests");
}

void Sandbox::plan(const Answer& answer) const
{
    control(web::http::methods::POST, "/answers", answer.plan());
}

void Sandbox::planConnection(const json::value& fate) const
{
    control(web::http::methods::POST, "/connections", fate);
}

void Sandbox::forgetPlans() const
{
    control(web::http::methods::DEL, "/answers");
    control(web::http::methods::DEL, "/connections");
}

void Sandbox::reset() const
{
    control(web::http::methods::POST, "/reset");
}

json::value Sandbox::state() const
{
    return json::value::parse(to_string_t(get("/state")));
}

std::string Sandbox::get(const std::string& path) const
{
    const auto bytes = control(web::http::methods::GET, path).extract_vector().get();
    return {bytes.begin(), bytes.end()};
}

web::http::http_response Sandbox::control(const web::http::method& method, const std::string& path,
                                          const json::value& body) const
{
    web::http::http_request request(method);
    request.set_request_uri(to_string_t(path));
    if (!body.is_null()) {
        request.set_body(body);
    }
    auto response = m_control.request(request).get();
    if (response.status_code() >= 300) {
        throw std::runtime_error("the sandbox refused " + path + ": " +
                                 response.extract_utf8string(true).get());
    }
    return response;
}
