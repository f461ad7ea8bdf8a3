/// @file
/// Helpers of the client that need none of its state.
#pragma once

#include "TAVIKVANTRYAPI.h"

#include <cpprest/http_client.h>

#include <functional>
#include <string>

namespace VantryIntegrationApi::Utils
{
/// Text of the module's string table, at most 511 characters; empty for an unknown id.
std::wstring LoadStringW(std::uint32_t id);

/// Scheme, host and port (if one is written) of `url`, as `scheme://host:port`.
/// @throws web::uri_exception if `url` cannot be parsed; std::range_error if it is malformed text
std::wstring getSchemeIpAsUrl(const std::wstring& url);

/// The same of a parsed URI, unlogged.
std::wstring baseAddress(const web::uri& url);

/// Whether the scheme of `url` is exactly "https".
/// @throws web::uri_exception if `url` cannot be parsed; std::range_error if it is malformed text
bool isSecureScheme(const std::wstring& url);

/// `text` for a query as it is, except for characters that have no raw form in a URI: these are
/// percent-encoded.
/// @throws std::range_error if `text` is malformed
utility::string_t rawQueryText(const std::wstring& text);

/// Query elements "username=" and "password=", encoded, in this order.
/// @throws std::range_error if a text is malformed
utility::string_t credentialQuery(const std::wstring& userName, const std::wstring& password);

/// The member `name` of `object`; JSON null where there is none.
web::json::value member(const web::json::value& object, const utility::char_t* name);

/// JSON text of `value`, as the serializer writes it.
/// @throws std::range_error if it is malformed text
std::wstring jsonText(const web::json::value& value);

/// Calls `method` and turns every exception into a status. Never throws.
ResponseStatus safe_CallMethod(const std::function<ResponseStatus()>& method);

/// The JSON value of an answer's body, read by its content type alone; JSON null where it has no readable
/// one.
/// @throws std::exception if a body of a text type cannot be read or parsed; the task fails in the same way
/// for
///         a body of the JSON type
pplx::task<web::json::value> handleResponse(web::http::http_response& response);
} // namespace VantryIntegrationApi::Utils
