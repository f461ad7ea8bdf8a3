// The server of the measurements: answers at once, from memory, so that the time is the client's. usage:
// vantry-bench-server COMMAND ARGUMENT...
#include "Certificates.h"
#include "Platform.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using Tls = asio::ssl::stream<tcp::socket>;

namespace
{
/// The answers to some targets: what clients of the https port fetch to trust it.
std::map<std::string, std::string> files;

std::string answer(const std::string& status, const std::string& type, const std::string& body)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string tickets(std::size_t count)
{
    std::string body = "[";
    for (std::size_t i = 0; i < count; ++i) {
        body += (i == 0 ? "" : ",");
        body += R"({"id":)" + std::to_string(1001 + i) +
                R"(,"type":"JobTicket","lastUpdated":"2024-05-01T10:00:00Z",)"
                R"("shortSubject":"Printer on floor 3 prints blank pages",)"
                R"("shortDetail":"Since this morning every second page stays white; the toner is new.",)"
                R"("displayClient":"Jörg Müller"})";
    }
    return answer("200 OK", "application/json", body + "]");
}

/// The list of the client that the query names: as many tickets as its number says.
const std::string& ticketsOf(const std::string& target)
{
    static std::mutex mutex;
    static std::map<std::size_t, std::string> lists;
    const std::string qualifier = "clientId=";
    const auto count = std::stoul(target.substr(target.find(qualifier) + qualifier.size()));
    const std::lock_guard lock(mutex);
    auto& list = lists[count];
    if (list.empty()) {
        list = tickets(count);
    }
    return list;
}

const std::string& answerTo(http::verb method, const std::string& target)
{
    static const auto created = answer("201 Created", "application/json", R"({"id":2001,"type":"TechNote"})");
    static const auto home = answer("200 OK", "text/plain", "");
    if (method == http::verb::post) {
        return created;
    }
    if (const auto file = files.find(target); file != files.end()) {
        return file->second;
    }
    return target.find("/Tickets") == std::string::npos ? home : ticketsOf(target);
}

template <typename Stream>
void discard(Stream& stream, boost::beast::flat_buffer& read, std::uint64_t size)
{
    const auto early = std::min<std::uint64_t>(read.size(), size);
    read.consume(early);
    std::vector<char> piece(256 * 1024);
    for (auto left = size - early; left > 0;) {
        left -= stream.read_some(asio::buffer(piece, std::min<std::uint64_t>(piece.size(), left)));
    }
}

/// A client that sends head and body apart would else wait for the system's timer between the two. Holds for
/// the next bytes only.
void acknowledgeAtOnce(tcp::socket::lowest_layer_type& socket)
{
    socket.set_option(asio::detail::socket_option::boolean<IPPROTO_TCP, TCP_QUICKACK>(true));
}

/// Serves a connection until the client closes it, which is a `system_error`.
template <typename Stream>
void serve(Stream& stream)
{
    boost::beast::flat_buffer read;
    for (;;) {
        http::request_parser<http::empty_body> request;
        acknowledgeAtOnce(stream.lowest_layer());
        request.body_limit(std::numeric_limits<std::uint64_t>::max());
        http::read_header(stream, read, request);
        discard(stream, read, request.content_length().value_or(0));
        asio::write(stream,
                    asio::buffer(answerTo(request.get().method(), std::string(request.get().target()))));
    }
}

void serve(tcp::socket socket, asio::ssl::context* tls)
{
    try {
        socket.set_option(tcp::no_delay(true));
        if (tls == nullptr) {
            serve(socket);
        } else {
            Tls stream(std::move(socket), *tls);
            stream.handshake(Tls::server);
            serve(stream);
        }
    } catch (const boost::system::system_error&) {
        return; // the client has gone
    }
}

/// Listens on a port of the loopback interface and serves each connection on a thread of its own.
unsigned short listen(asio::io_context& context, asio::ssl::context* tls)
{
    auto acceptor =
        std::make_shared<tcp::acceptor>(context, tcp::endpoint(asio::ip::address_v4::loopback(), 0));
    fcntl(acceptor->native_handle(), F_SETFD,
          FD_CLOEXEC); // not for the command, nor for what it leaves behind
    std::thread([acceptor, &context, tls] {
        for (;;) {
            tcp::socket socket(context);
            acceptor->accept(socket);
            std::thread([client = std::move(socket), tls]() mutable {
                serve(std::move(client), tls);
            }).detach();
        }
    }).detach();
    return acceptor->local_endpoint().port();
}

int run(const std::vector<std::string>& command)
{
    std::signal(SIGPIPE, SIG_IGN);
    asio::io_context context;
    const auto port = listen(context, nullptr);
    const auto plain = "http://127.0.0.1:" + std::to_string(port);
    sandbox::CertificateAuthority authority(plain + "/ca.crl");
    files = {{"/ca.crl", answer("200 OK", "application/pkix-crl", authority.revocationListDer())},
             {"/ca.der", answer("200 OK", "application/pkix-cert", authority.der())},
             {"/ca.pem", answer("200 OK", "application/x-pem-file", authority.pem())}};
    const auto tls = authority.certificate(sandbox::CertificateKind::Good).tls;
    const auto secure = "https://localhost:" + std::to_string(listen(context, tls.get()));

    setenv("VANTRY_BENCH_HTTP", plain.c_str(), 1);
    setenv("VANTRY_BENCH_HTTPS", secure.c_str(), 1);
    const auto child = sandbox::platform::start(context, command);
    context.run();
    return sandbox::platform::exitCode(child);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: vantry-bench-server COMMAND ARGUMENT...\n";
        return 64;
    }
    try {
        return run(sandbox::platform::arguments(argc, argv));
    } catch (const std::exception& error) {
        std::cerr << "vantry-bench-server: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
