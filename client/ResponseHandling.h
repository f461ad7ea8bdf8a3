/// @file
/// Reading what a server answered.
#pragma once

#include <cpprest/http_msg.h>
#include <cpprest/json.h>

#include <memory>
#include <string>

namespace VantryIntegrationApi::Utils
{
/// An answer's JSON value. Shared, since tasks would copy the whole tree each time they hand it on.
using JsonAnswer = std::shared_ptr<const web::json::value>;

/// The JSON value of an answer's body, read by its content type alone; JSON null where it has no readable
/// one.
/// @throws std::exception if a body of a text type cannot be read or parsed; the task fails in the same way
///         for a body of the JSON type
pplx::task<JsonAnswer> handleResponse(web::http::http_response& response);

/// The member `name` of `object`; JSON null where there is none. Valid as long as `object`.
const web::json::value& member(const web::json::value& object, const utility::char_t* name);

/// JSON text of `value`, as the serializer writes it.
std::wstring jsonText(const web::json::value& value);
} // namespace VantryIntegrationApi::Utils
