/// @file
/// Addresses of servers, and what requests carry in their queries.
#pragma once

#include <cpprest/base_uri.h>

#include <optional>
#include <string>

namespace VantryIntegrationApi::Utils
{
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

/// `text` as a credential stands in a query: percent-encoded wherever it is neither letter nor digit nor one
/// of "-._~". None for malformed text, which no query shows.
std::optional<std::wstring> shownInQuery(const std::wstring& text);

/// Query elements "username=" and "password=", encoded, in this order.
/// @throws std::range_error if a text is malformed
utility::string_t credentialQuery(const std::wstring& userName, const std::wstring& password);
} // namespace VantryIntegrationApi::Utils
