#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox
{

std::string_view pathOf(std::string_view target);

// The percent-decoded value of the first query parameter of that name; nothing when it is absent or when
// its percent-encoding is broken.
std::optional<std::string> parameterOf(std::string_view target, std::string_view name);

} // namespace sandbox
