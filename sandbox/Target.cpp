#include "Target.h"

#include <charconv>

namespace sandbox
{

namespace
{

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            decoded += text[at];
            continue;
        }
        const std::string_view digits = text.substr(at + 1, 2);
        unsigned char byte = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (error != std::errc() || end != digits.data() + 2) {
            return std::nullopt;
        }
        decoded += static_cast<char>(byte);
        at += 2;
    }
    return decoded;
}

} // namespace

std::string_view pathOf(std::string_view target)
{
    return target.substr(0, target.find('?'));
}

std::optional<std::string> parameterOf(std::string_view target, std::string_view name)
{
    std::size_t at = target.find('?');
    while (at != std::string_view::npos) {
        target.remove_prefix(at + 1);
        at = target.find('&');
        const std::string_view element = target.substr(0, at);
        const std::size_t equals = element.find('=');
        if (equals != std::string_view::npos && element.substr(0, equals) == name) {
            return percentDecoded(element.substr(equals + 1));
        }
    }
    return std::nullopt;
}

} // namespace sandbox
