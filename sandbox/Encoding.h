#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox
{

std::string toBase64(std::string_view bytes);
std::optional<std::string> fromBase64(std::string_view text);

// 32 hexadecimal digits that nobody can guess.
std::string randomToken();

} // namespace sandbox
