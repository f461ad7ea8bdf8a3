/// @file
/// Texts of the module's string table.
#pragma once

#include <cstdint>
#include <string>

namespace VantryIntegrationApi::Utils
{
/// The text of this id (see StringTable.h), at most 511 characters; empty for an unknown id.
std::wstring LoadStringW(std::uint32_t id);
} // namespace VantryIntegrationApi::Utils
