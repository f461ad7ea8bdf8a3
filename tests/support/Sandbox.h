/// @file
/// The stand-in server that every test has for itself, seen through its control interface.
#pragma once

#include <cpprest/base_uri.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A request as its bytes arrived. `headers` leaves out what belongs to the connection (Host and the like).
struct Request
{
    bool secure;
    std::string method;
    std::string target;
    std::map<std::string, std::string> headers;
    std::string body;
};

/// A piece of an answer in the server's own bytes, written `times` times (0: until the client goes), after a
/// wait each, and followed by a renegotiation of TLS that presents a certificate, if one is named.
struct Step
{
    std::string bytes;
    int waitMs = 0;
    std::uint64_t times = 1;
    std::string renegotiate = {};
};

/// An answer that replaces the sandbox's own, once.
class Answer
{
public:
    /// No content type: no header of that name.
    explicit Answer(int status, const std::string& body = "",
                    const std::string& contentType = "application/json");

    /// Only for requests of this path.
    Answer& to(const std::string& path) { return order("path", path); }
    /// So many that fit are answered by the sandbox first.
    Answer& skip(int requests) { return order("skip", requests); }
    Answer& header(const std::string& name, const std::string& value);
    Answer& after(int milliseconds) { return order("delayMs", milliseconds); }
    /// Until Sandbox::release().
    Answer& held() { return order("held", true); }

    /// Exactly these bytes.
    static Answer bytes(const std::string& raw);

    /// Exactly these steps, and `then` what the control interface knows to do with the connection.
    static Answer script(const std::vector<Step>& steps, const std::string& then);

    const nlohmann::json& plan() const { return m_plan; }

private:
    explicit Answer(nlohmann::json plan) : m_plan(std::move(plan)) {}

    Answer& order(const char* name, const nlohmann::json& value)
    {
        m_plan[name] = value;
        return *this;
    }

    nlohmann::json m_plan;
};

class Sandbox
{
public:
    Sandbox();

    const std::wstring http; ///< the endpoints
    const std::wstring https;
    const std::wstring user;
    const std::wstring password;
    const std::string authorityFile;

    /// The requests so far, without the certificate probes ("GET /").
    std::vector<Request> requests() const;
    std::size_t probes() const;

    /// The only request so far but for probes; an empty one, and a failure of the test, if there is another
    /// number.
    Request onlyRequest() const;
    void forgetRequests() const { control("DELETE", "/requests"); }

    void plan(const Answer& answer) const { control("POST", "/answers", answer.plan().dump()); }
    /// Has go on what is held; what was planned as held before is not held when it comes.
    void release() const { control("POST", "/release"); }
    /// The fate of a connection to come, in the control interface's words.
    void planConnection(const nlohmann::json& fate) const { control("POST", "/connections", fate.dump()); }
    /// Forgets what was planned and has not come.
    void forgetPlans() const { control("DELETE", "/plans"); }

    /// Has it forget all records, requests and plans.
    void reset() const { control("POST", "/reset"); }

    nlohmann::json state() const { return nlohmann::json::parse(get("/state")); }
    /// The body of GET `path` on the control interface.
    std::string get(const std::string& path) const { return control("GET", path); }

private:
    std::vector<Request> allRequests() const;
    /// The answer's body.
    std::string control(const std::string& method, const std::string& path,
                        const std::string& body = "") const;

    const web::uri m_control;
};
