// libcurl with a fresh handle, Boost.Beast on the calling thread, and what Linux counts.
#include <curl/curl.h> // first: the REST SDK makes a macro of a word that it uses

#include "Client.h"
#include "Measurement.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <stdexcept>

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using Bench::Request;
using Bench::Response;

namespace
{
std::size_t append(const char* data, std::size_t /*one*/, std::size_t size, void* body)
{
    static_cast<std::string*>(body)->append(data, size);
    return size;
}

Response overCurl(const web::uri& server, const Request& request, bool validate)
{
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
    curl_slist* lines = curl_slist_append(nullptr, "Expect:");
    for (const auto& [name, value] : request.headers) {
        lines = curl_slist_append(lines, (name + ": " + value).c_str());
    }
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(lines, &curl_slist_free_all);
    Response response;
    curl_easy_setopt(curl.get(), CURLOPT_URL, server.to_string().c_str());
    curl_easy_setopt(curl.get(), CURLOPT_REQUEST_TARGET, request.target.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_CAINFO, std::getenv("SSL_CERT_FILE"));
    curl_easy_setopt(curl.get(), CURLOPT_SSL_VERIFYPEER, validate ? 1L : 0L);
    curl_easy_setopt(curl.get(), CURLOPT_SSL_VERIFYHOST, validate ? 2L : 0L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &append);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &response.body);
    if (request.method == "POST") {
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, request.body.data());
    }
    if (const auto code = curl_easy_perform(curl.get()); code != CURLE_OK) {
        throw std::runtime_error(curl_easy_strerror(code));
    }
    long status = 0;
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &status);
    response.status = static_cast<std::size_t>(status);
    return response;
}

template <typename Stream>
Response exchangeOver(Stream& stream, const web::uri& server, const Request& request)
{
    constexpr unsigned version11 = 11;
    http::request<http::span_body<const char>> message(http::string_to_verb(request.method), request.target,
                                                       version11);
    message.set(http::field::host, server.host() + ":" + std::to_string(server.port()));
    for (const auto& [name, value] : request.headers) {
        message.set(name, value);
    }
    message.body() = {request.body.data(), request.body.size()};
    message.prepare_payload();
    http::write(stream, message);
    boost::beast::flat_buffer buffer;
    http::response_parser<http::string_body> answer;
    answer.body_limit(std::numeric_limits<std::uint64_t>::max());
    http::read(stream, buffer, answer);
    return {answer.get().result_int(), std::move(answer.get().body())};
}

Response overBeast(const web::uri& server, const Request& request, bool validate)
{
    asio::io_context context;
    tcp::resolver resolver(context);
    tcp::socket socket(context);
    asio::connect(socket, resolver.resolve(server.host(), std::to_string(server.port())));
    socket.set_option(tcp::no_delay(true));
    if (!Bench::isSecure(server)) {
        return exchangeOver(socket, server, request);
    }
    asio::ssl::context tls(asio::ssl::context::tls_client);
    tls.set_default_verify_paths();
    asio::ssl::stream<tcp::socket> stream(std::move(socket), tls);
    SSL_set_tlsext_host_name(stream.native_handle(), server.host().c_str());
    if (validate) {
        stream.set_verify_mode(asio::ssl::verify_peer);
        stream.set_verify_callback(asio::ssl::host_name_verification(server.host()));
    }
    stream.handshake(asio::ssl::stream_base::client);
    return exchangeOver(stream, server, request);
}

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}
} // namespace

Bench::Usage Bench::usage()
{
    rusage counted{};
    getrusage(RUSAGE_SELF, &counted);
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return {seconds(counted.ru_utime) + seconds(counted.ru_stime),
            resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)),
            static_cast<std::size_t>(counted.ru_maxrss) * 1024};
}

std::vector<Bench::NamedClient> Bench::peers()
{
    return {{"libcurl", plainClient(&overCurl)}, {"Boost.Beast", plainClient(&overBeast)}};
}
