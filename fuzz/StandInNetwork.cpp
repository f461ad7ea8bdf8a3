#include "StandInNetwork.h"

#include <boost/algorithm/string/trim.hpp>
#include <cpprest/containerstream.h>
#include <cpprest/http_client.h>
#include <pplx/pplx.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <mutex>

using web::http::http_request;
using web::http::http_response;

namespace
{
class AtOnce final : public pplx::scheduler_interface
{
public:
    void schedule(pplx::TaskProc_t task, void* argument) override { task(argument); }
};

fuzz::Server& server()
{
    static fuzz::Server current;
    return current;
}

std::string_view nextLine(std::string_view& rest)
{
    auto line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

/// Takes "HTTP/1.1 200 OK" apart.
void readStatusLine(std::string_view line, http_response& response)
{
    line.remove_prefix(std::min(line.size(), line.find(' ')));
    line.remove_prefix(std::min<std::size_t>(line.size(), 1));
    web::http::status_code code = 0;
    const auto* const end = std::from_chars(line.data(), line.data() + line.size(), code).ptr;
    response.set_status_code(code);
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    response.set_reason_phrase(boost::trim_copy(std::string(line)));
}
} // namespace

namespace fuzz
{
void setServer(Server newServer)
{
    static std::once_flag first;
    std::call_once(first, [] { pplx::set_ambient_scheduler(std::make_shared<AtOnce>()); });
    server() = std::move(newServer);
}

std::string targetOf(const http_request& request)
{
    return request.absolute_uri().resource().to_string();
}

http_response responseOf(std::string_view bytes)
{
    http_response response;
    readStatusLine(nextLine(bytes), response);
    for (auto line = nextLine(bytes); !line.empty(); line = nextLine(bytes)) {
        if (const auto colon = line.find(':'); colon != std::string_view::npos) {
            response.headers().add(std::string(line.substr(0, colon)),
                                   boost::trim_copy(std::string(line.substr(colon + 1))));
        }
    }
    const auto body = response._get_impl();
    body->set_instream(concurrency::streams::bytestream::open_istream(std::string(bytes)));
    body->_complete(bytes.size());
    return response;
}
} // namespace fuzz

// Takes the place of the function of this name in the REST SDK: the linker takes from a library only what the
// program does not define.
pplx::task<http_response> web::http::client::http_client::request(http_request request,
                                                                  const pplx::cancellation_token& /*token*/)
{
    request._set_base_uri(base_uri());
    return pplx::task_from_result(server()(std::move(request)));
}
