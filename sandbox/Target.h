#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox
{
std::string_view pathOf(std::string_view target);

/// The percent-decoded value of the first query parameter of that name; nothing when it is absent or when
/// its percent-encoding is broken.
std::optional<std::string> parameterOf(std::string_view target, std::string_view name);

/// The value of a parameter in a header "value; name=value; ...", with or without quotes. A quoted one ends
/// at the next quote: a backslash stands for itself, as in the file names that Windows programs send.
std::optional<std::string_view> headerParameter(std::string_view header, std::string_view name);
} // namespace sandbox
