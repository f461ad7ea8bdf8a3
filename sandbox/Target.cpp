#include "Target.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
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

std::optional<std::string_view> headerParameter(std::string_view header, std::string_view name)
{
    for (std::size_t at = header.find(';'); at != std::string_view::npos; at = header.find(';')) {
        header.remove_prefix(std::min(header.size(), header.find_first_not_of("; ", at)));
        const std::string_view found = header.substr(0, header.find('='));
        header.remove_prefix(std::min(header.size(), found.size() + 1));
        const bool isQuoted = header.substr(0, 1) == "\"";
        header.remove_prefix(isQuoted ? 1 : 0);
        const std::string_view value = header.substr(0, header.find(isQuoted ? '"' : ';'));
        header.remove_prefix(value.size());
        if (boost::iequals(found, name)) {
            return value;
        }
    }
    return std::nullopt;
}
} // namespace sandbox
