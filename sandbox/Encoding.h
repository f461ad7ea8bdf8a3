#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox
{
std::string toBase64(std::string_view bytes);
std::optional<std::string> fromBase64(std::string_view text);
} // namespace sandbox
