/// @file
/// What comes back of an exchange.
#pragma once

#include "TAVIKVANTRYAPI.h"

#include <cpprest/json.h>

namespace VantryIntegrationApi
{
/// The outcome of an exchange, and the answer's JSON value: JSON null where there is none.
struct ServerAnswer
{
    ResponseStatus status;
    web::json::value body;
};
} // namespace VantryIntegrationApi
