/// @file
/// Reading what a server answered.
#pragma once

#include <cpprest/http_msg.h>
#include <cpprest/json.h>

#include <string>

namespace VantryIntegrationApi::Utils
{
/// Whether `handleResponse` reads the body of this answer.
bool readsBody(const web::http::http_response& response);

/// The JSON value of an answer's body, read by its content type alone; JSON null where it has no readable
/// one. Waits for a body that it reads.
/// @throws std::exception if the body cannot be read or parsed
web::json::value handleResponse(web::http::http_response& response);

/// The member `name` of `object`; JSON null where there is none. Valid as long as `object`.
const web::json::value& member(const web::json::value& object, const utility::char_t* name);

/// JSON text of `value`, as the serializer writes it.
std::wstring jsonText(const web::json::value& value);
} // namespace VantryIntegrationApi::Utils
