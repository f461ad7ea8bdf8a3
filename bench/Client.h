/// @file
/// What is measured: the operations of a host, done in different ways with the same requests and the same
/// results.
#pragma once

#include <TAVIKVANTRYAPI.h>
#include <cpprest/base_uri.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Bench
{
class Client
{
public:
    virtual ~Client() = default;

    /// `server`: scheme, host and port. Over https every operation probes the server's certificate first.
    virtual void use(const std::string& server) = 0;

    // Each throws if the server does not answer as it should.
    virtual void saveNote(const TechNote& note) = 0;
    virtual void listTickets(std::size_t count) = 0;
    virtual void upload(const Attachment& file) = 0;

    // What a host has ready before; not part of what is measured.
    virtual void prepareNote(const TechNote& /*note*/) {}
    virtual void prepareUpload(const Attachment& /*file*/) {}
};

struct Request
{
    std::string method;
    std::string target;
    std::map<std::string, std::string> headers;
    std::string body;
};

struct Response
{
    std::size_t status = 0;
    std::string body;
};

inline bool isSecure(const web::uri& server)
{
    return server.scheme() == _XPLATSTR("https");
}

/// One exchange over a connection of its own; `validate`: only with a server whose certificate is valid.
using Exchange = std::function<Response(const web::uri& server, const Request& request, bool validate)>;

std::unique_ptr<Client> libraryClient();
std::unique_ptr<Client> cInterfaceClient();
/// The REST SDK as a host would use it.
std::unique_ptr<Client> sdkClient();
/// Over an HTTP library that knows no JSON: the REST SDK's reads it.
std::unique_ptr<Client> plainClient(Exchange exchange);

struct NamedClient
{
    std::string name;
    std::shared_ptr<Client> client;
};

/// Over the other HTTP libraries of the target.
std::vector<NamedClient> peers();

/// @throws std::runtime_error if the two differ
void expect(std::size_t expected, std::size_t actual, const std::string& what);
} // namespace Bench
