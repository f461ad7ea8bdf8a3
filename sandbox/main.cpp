#include "Certificates.h"
#include "Listener.h"
#include "Platform.h"
#include "Service.h"

#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/process/environment.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace
{
using namespace sandbox;

constexpr const char* explanation = R"(
Serves until SIGINT or SIGTERM (on Windows: Ctrl-C, or its console is closed) and prints what clients need to know:
  VANTRY_SANDBOX_HTTP=http://localhost:PORT/helpdesk/rest      the plain REST endpoint
  VANTRY_SANDBOX_HTTPS=https://localhost:PORT/helpdesk/rest    the TLS REST endpoint
  VANTRY_SANDBOX_CONTROL=http://localhost:PORT                 the control interface
  VANTRY_SANDBOX_CA_FILE=PATH                                  the certificate authority (PEM), removed at the end
  VANTRY_SANDBOX_USER=NAME  VANTRY_SANDBOX_PASSWORD=PASSWORD   as given

With -- COMMAND ARG... at its end it prints nothing, runs the command with these variables in its environment,
and ends with the command's exit code (on Linux 128 + n when signal n ended it).

All ports are chosen by the system and open on 127.0.0.1 alone. Certificates are made afresh for each run:
a CA (CN=Vantry Sandbox CA and a number) and from it the server's certificate (CN=localhost), whose
revocation list the control interface serves. Requests are limited to 64 KiB of headers and 512 MiB of body.

REST RESOURCES, under /helpdesk/rest, the same on both REST ports
  USER stands for username=NAME&password=PASSWORD, percent-encoded; wrong or missing: 401. Errors are
  {"error":"..."}. Identifiers are numbers: tickets from 1001, tech notes from 2001, attachments from 3001.

  GET /Session?USER
      200 {"type":"Session","sessionKey":"KEY"} and Set-Cookie: JSESSIONID=TEXT; Path=/; HttpOnly
  DELETE /Session?sessionKey=KEY         with Cookie: JSESSIONID=TEXT
      200 {"type":"Session","closed":true}; unknown key 404, wrong cookie 401
  POST /Tickets?USER
      {"subject":"S","detail":"D","clientReporter":{"type":"Client","id":"42"}} or, for an asset,
      {"subject":"S","detail":"D","assets":[{"type":"Asset","id":"42"}]}
      201 {"id":1001,"type":"JobTicket"}; another shape or an empty subject 400
  GET /Tickets?qualifier=(clientId=42)&USER         or qualifier=(assets.assetId=42)
      200 [{"id":1001,"type":"JobTicket","shortSubject":"S","shortDetail":"D","displayClient":"Client 42"}]
      with displayClient null for an asset; another qualifier 400
  POST /TechNotes?USER
      {"noteText":"N","jobticket":{"type":"JobTicket","id":"1001"},"workTime":"15","isHidden":false}
      201 {"id":2001,"type":"TechNote"}; unknown ticket 404; another shape 400

  Elsewhere:
  POST /helpdesk/attachment/upload?type=TechNote&entityId=2001
      with Cookie: JSESSIONID=TEXT; wosid=KEY; vantryuser_helpdesk=NAME of one open session (else 401) and a
      multipart/form-data body of exactly one part, named "file", with a filename
      201 {"id":3001,"type":"Attachment"}; unknown tech note 404; bad upload 400. Errors: {"reason":"..."}
  GET /              200, a small HTML page
  Other paths: 404. Other methods on these paths: 405.

CONTROL INTERFACE, on a port of its own; its requests are neither recorded nor given planned answers
  GET /requests      every request to the REST ports, in order of arrival: [{"secure":false,"method":"GET",
                     "target":"/...","raw":"head and body as received, but for chunk headers"}].
                     Each character of "raw" is a byte. What is no valid HTTP request has an empty method and target.
  DELETE /requests   forgets them; 204
  POST /answers      plans the answer to the next request that it fits; 204, or 400 if malformed. Each is
                     used once, the oldest first. All members are optional:
      "path"             which requests it fits (the target without its query); absent: any
      "skip"             so many requests that fit get their own answers first
      "status", "headers", "body"
                         the answer; status 200 when absent. Reason phrase and Content-Length are added.
                         Status 1xx, 204 and 304 have neither body nor Content-Length.
      "steps"            instead: [{"raw":TEXT,"waitMs":N,"times":N},...], written in this order, each
                         character a byte, "times" times (1 when absent; 0: without end, until the
                         client goes) and each time after "waitMs", at most one hour; with
                         "renegotiate":CERTIFICATE the bytes are followed by a renegotiation that presents it,
                         where TLS 1.2 is spoken
      "then"             what follows the last step: "close" (in good order, as when absent), "drop" (close
                         without a TLS goodbye), "reset" (the connection), "stay" (open and silent until the
                         client goes)
      "delayMs"          how long to wait before the answer, at most one hour
      "held"             true: the answer waits for POST /release
  POST /release      has go on what was planned as held so far, also where the request or connection has yet
                     to come; 204
  POST /connections  plans the fate of one connection to come on a REST port; 204, or 400 if malformed. The
                     oldest that fits decides; it is used once:
      "secure"           true or false: the port that it fits; absent: any
      "skip"             so many connections that fit are let through first
      and "fault", or some of the others:
      "fault"            "close", "reset"; "silent" (never a byte; no more than 64 KiB are read in the first
                         two minutes); or, when the client has begun to speak: "plain" (HTTP text), "alert"
                         (a fatal TLS alert), "garbage" (neither HTTP nor TLS), "closeInHandshake" (half of
                         a TLS ServerHello), each closed afterwards
      "held"             true: nothing is read before POST /release
      "certificate"      what the TLS port presents: "expired", "notYetValid", "otherHost", "selfSigned",
                         "unknownCa", or "other", which is another good one of the same CA; "good" when absent
      "tls"              the only version that it speaks: "1.1" or "1.2"; absent: 1.2 and 1.3
  DELETE /plans      forgets the planned answers and connections; 204
  POST /reset        forgets sessions, tickets, tech notes, attachments, requests and all that is planned; 204
  GET /state         {"sessions":[{"key","cookie","user"}],
                      "tickets":[{"id","entityType","entityId","subject","detail"}],
                      "techNotes":[{"id","ticketId","noteText","workTime","isHidden"}],
                      "attachments":[{"id","techNoteId","fileName","size"}]}
  GET /attachments/ID                             an attachment's bytes
  GET /ca.der  /leaf.der  /crl.der                the certificates and the revocation list
)";

struct Options
{
    std::string user = "technician";
    std::string password = "wrench";
    std::vector<std::string> command; ///< empty: serve until a signal comes
};

/// Has the parser read what stands before "--", and returns the command that follows. The command's own
/// arguments do not go through the parser, which gives brackets and commas a meaning.
std::vector<std::string> parse(CLI::App& app, const std::vector<std::string>& arguments)
{
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    std::vector<std::string> own(arguments.begin(), separator);
    std::reverse(own.begin(), own.end()); // the order in which the parser takes a vector
    app.parse(own);
    if (separator == arguments.end()) {
        return {};
    }
    std::vector<std::string> command(std::next(separator), arguments.end());
    if (command.empty()) {
        throw CLI::ArgumentMismatch("a command must follow --", CLI::ExitCodes::ArgumentMismatch);
    }
    return command;
}

constexpr std::chrono::seconds graceTime{5};

/// The certificate authority as a file for clients, which goes with this object.
class CaFile
{
public:
    explicit CaFile(const std::string& pem)
        : m_path(std::filesystem::temp_directory_path() /
                 ("vantry-sandbox-" + to_string(boost::uuids::random_generator()()) + ".pem"))
    {
        if (!(std::ofstream(m_path, std::ios::binary) << pem << std::flush)) {
            throw std::runtime_error("cannot write " + m_path.u8string());
        }
    }

    ~CaFile()
    {
        std::error_code leftBehind; // a file that cannot be removed is no reason to fail at exit
        std::filesystem::remove(m_path, leftBehind);
    }

    CaFile(const CaFile&) = delete;
    CaFile& operator=(const CaFile&) = delete;
    CaFile(CaFile&&) = delete;
    CaFile& operator=(CaFile&&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

void setVariable(const std::string& name, const std::string& value)
{
    using Character = std::filesystem::path::value_type; // the environment's own
    boost::process::basic_native_environment<Character> environment;
    environment[std::filesystem::u8path(name).native()] = std::filesystem::u8path(value).native();
}

/// A signal that would end the sandbox goes to the command instead, whose end then ends the sandbox. A
/// command that does not heed it is killed after a while.
int serveCommand(boost::asio::io_context& context, boost::asio::signal_set& stop,
                 const std::vector<std::string>& words)
{
    boost::asio::steady_timer grace(context);
    boost::process::child command = platform::start(context, words);
    stop.async_wait([&](boost::system::error_code, int signal) {
        platform::signal(command, signal);
        grace.expires_after(graceTime);
        grace.async_wait([&](boost::system::error_code) { command.terminate(); });
    });
    context.run();
    command.wait();
    return platform::exitCode(command);
}

/// Opens the three ports, puts the services behind them and tells where they are. Everything runs on the one
/// thread that runs the context.
int run(const Options& options)
{
    boost::asio::io_context context(1);
    Listener control(context);
    Listener http(context);
    Listener https(context);
    // Another address in each run: a client may cache the list, and the system gives ports out again.
    CertificateAuthority authority(control.address("http") + "/crl.der?" +
                                   std::to_string(std::random_device()()));
    const CaFile caFile(authority.pem());
    SharedState state;
    Service restService(restRoutes(state, options.user, options.password), &state);
    Service controlService(controlRoutes(state, authority));
    control.start(controlService);
    http.start(restService);
    https.start(restService, &authority);

    boost::asio::signal_set stop(context);
    platform::addStopSignals(stop);
    const std::vector<std::pair<std::string, std::string>> variables{
        {"VANTRY_SANDBOX_HTTP", http.address("http") + restBase},
        {"VANTRY_SANDBOX_HTTPS", https.address("https") + restBase},
        {"VANTRY_SANDBOX_CONTROL", control.address("http")},
        {"VANTRY_SANDBOX_CA_FILE", caFile.path().u8string()},
        {"VANTRY_SANDBOX_USER", options.user},
        {"VANTRY_SANDBOX_PASSWORD", options.password},
    };
    for (const auto& [name, value] : variables) {
        if (options.command.empty()) {
            std::cout << name << '=' << value << std::endl;
        } else {
            setVariable(name, value);
        }
    }
    if (!options.command.empty()) {
        return serveCommand(context, stop, options.command);
    }
    stop.async_wait([&context](boost::system::error_code, int) { context.stop(); });
    context.run();
    return EXIT_SUCCESS;
}
} // namespace

int main(int argc, char** argv)
{
    try {
        Options options;
        CLI::App app("A help-desk server to develop and test against.", "vantry-sandbox");
        app.footer(explanation);
        app.add_option("--user", options.user, "Name of the one user")->capture_default_str();
        app.add_option("--password", options.password, "The user's password")->capture_default_str();
        try {
            options.command = parse(app, platform::arguments(argc, argv));
        } catch (const CLI::ParseError& error) {
            return app.exit(error);
        }
        return run(options);
    } catch (const std::exception& error) {
        std::cerr << "vantry-sandbox: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
