/// @file
/// A network without sockets or threads: the REST SDK's client hands each request to a function, and every
/// task runs at once on the thread that starts it.
#pragma once

#include <cpprest/http_msg.h>

#include <functional>
#include <string>
#include <string_view>

namespace fuzz
{
using Server = std::function<web::http::http_response(web::http::http_request)>;

/// Sets who answers.
void setServer(Server server);

/// Path and query of a request as a server sees them.
std::string targetOf(const web::http::http_request& request);

/// The answer that a server's bytes make, read as leniently as possible.
web::http::http_response responseOf(std::string_view bytes);
} // namespace fuzz
