/// @file
/// Pieces that requests are made of.
#pragma once

#include <cpprest/json.h>

#include <string>

namespace VantryIntegrationApi::Utils
{
/// What the server knows by `type` and `id`, as a request names it.
/// @throws std::range_error if `id` is malformed
web::json::value entity(const utility::char_t* type, const std::wstring& id);

/// For text that goes into a header, which ends where a line ends: it could write headers of its own. `name`
/// is what the exception calls the text.
/// @throws std::invalid_argument if `text` holds a line break or a zero character
void requireOneLine(const std::wstring& text, const std::string& name);
} // namespace VantryIntegrationApi::Utils
