/// @file
/// What surrounds the library in the fuzzers. The host: what it calls, and the log that it watches. The
/// network, without sockets or threads: the REST SDK's client hands each request to a function, and every
/// task runs at once on the thread that starts it.
#pragma once

#include "VantryApi.h"

#include <cpprest/http_msg.h>
#include <log4cxx/level.h>

#include <functional>
#include <string>
#include <string_view>

namespace fuzz
{
/// Ends the process unless it holds: the fuzzer takes that for a find.
void require(bool holds, std::string_view what);

/// Sets the level of the library's loggers and forgets what they wrote.
void logAt(const log4cxx::LevelPtr& level);

/// Neither `text`, which the host sees, nor any line since `logAt` shows the password of `setUp` in a query.
void requireSecrecy(const std::string& text = "");

/// Gives `client` an endpoint and these credentials.
void setUp(VantryIntegrationApi::CVantryApi& client, const std::wstring& endPoint,
           const std::wstring& userName, const std::wstring& password);

/// Runs one of the six operations, which `choice` chooses. The exceptions that the interface documents are
/// caught, and their text returned.
std::string runOperation(VantryIntegrationApi::CVantryApi& client, unsigned char choice);

using Server = std::function<web::http::http_response(web::http::http_request)>;

/// Sets who answers.
void setServer(Server server);

/// Path and query of a request as a server sees them.
std::string targetOf(const web::http::http_request& request);

/// The answer that a server's bytes make, read as leniently as possible.
web::http::http_response responseOf(std::string_view bytes);

/// The server's bytes that a fuzzer made, for this request: the byte 1 stands for the request's target, which
/// a server may well give back.
std::string withEcho(std::string_view answer, const std::string& target);

/// Whether `text` could stand in the head of a request without making a line of its own.
bool isOneLine(std::string_view text);
} // namespace fuzz
