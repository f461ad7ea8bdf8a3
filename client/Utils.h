/// @file
/// Helpers of the client that need none of its state: its texts, addresses and the JSON of its requests.
#pragma once

#include <cpprest/base_uri.h>
#include <cpprest/json.h>

#include <cstdint>
#include <optional>
#include <string>

namespace VantryIntegrationApi::Utils
{
/// Text of the module's string table, at most 511 characters; empty for an unknown id.
std::wstring LoadStringW(std::uint32_t id);

/// The address of a server. The system would take a port modulo 65,536, and what is sent would reach another
/// server.
/// @throws web::uri_exception if `url` cannot be parsed; std::range_error if it is malformed text;
///         std::invalid_argument if there is no such port
web::uri serverAddress(const std::wstring& url);

/// Scheme, host and port (if one is written) of `url`, as `scheme://host:port`.
/// @throws as `serverAddress`
std::wstring getSchemeIpAsUrl(const std::wstring& url);

/// The same of a parsed URI, unlogged.
std::wstring baseAddress(const web::uri& url);

/// Whether the scheme of `url` is exactly "https".
/// @throws as `serverAddress`
bool isSecureScheme(const std::wstring& url);

/// `text` for a query, percent-encoded only where a character has no raw form in a URI.
/// @throws std::range_error if `text` is malformed
utility::string_t minimallyEncoded(const std::wstring& text);

/// `text` for a query, percent-encoded wherever it is neither letter nor digit nor one of "-._~".
/// @throws std::range_error if `text` is malformed
utility::string_t encoded(const std::wstring& text);

/// `text` as `encoded` shows it in a query; none for malformed text, which no query shows.
std::optional<std::wstring> shownInQuery(const std::wstring& text);

/// Query elements "username=" and "password=", encoded, in this order.
/// @throws std::range_error if a text is malformed
utility::string_t credentialQuery(const std::wstring& userName, const std::wstring& password);

/// What the server knows by `type` and `id`, as a request names it.
/// @throws std::range_error if `id` is malformed
web::json::value entity(const utility::char_t* type, const std::wstring& id);

/// For text that goes into a header, which ends where a line ends: it could write headers of its own. `name`
/// is what the exception calls the text.
/// @throws std::invalid_argument if `text` holds a line break or a zero character
void requireOneLine(const std::wstring& text, const std::string& name);
} // namespace VantryIntegrationApi::Utils
