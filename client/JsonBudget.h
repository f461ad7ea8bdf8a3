/// @file
/// What reading a JSON text may cost.
#pragma once

#include <cpprest/details/basic_types.h>

#include <cstdint>

namespace VantryIntegrationApi::Utils
{
/// Memory that the values of `json` and the records made of them take at most, estimated: a text of few bytes
/// may stand for a value that takes a hundred times as much.
std::uint64_t memoryOfJson(const utility::string_t& json);

/// @throws web::json::json_exception if reading `json` may take more than 2 GiB
void requireAffordable(const utility::string_t& json);
} // namespace VantryIntegrationApi::Utils
