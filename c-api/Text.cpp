#include "Text.h"

#include "RestText.h"
#include "Turn.h"
#include "Utf8.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <cpprest/json.h>

namespace CInterface
{
std::wstring textOf(const char* given)
{
    if (given == nullptr || !Platform::isUtf8(given)) {
        throw Refusal{VANTRY_INVALID_ARGUMENT};
    }
    return Platform::fromUtf8(given);
}

std::string forHost(const std::wstring& text)
{
    return forHost(Platform::toUtf8(text));
}

std::string forHost(std::string utf8)
{
    constexpr auto replacement = "\xEF\xBF\xBD";
    if (utf8.find('\0') != std::string::npos) {
        boost::replace_all(utf8, std::string(1, '\0'), replacement);
    }
    return utf8;
}

void appendForHost(std::string& to, const std::wstring& text)
{
    if (!Platform::appendAscii(to, text)) {
        to += forHost(text);
    }
}

std::string plain(const std::wstring& json)
{
    if (boost::starts_with(json, L"\"")) {
        std::error_code error;
        const auto value = web::json::value::parse(Platform::toRestText(json), error);
        if (!error && value.is_string()) {
            return forHost(Platform::fromRestText(value.as_string()));
        }
    }
    return json == L"null" ? std::string() : forHost(json);
}
} // namespace CInterface
