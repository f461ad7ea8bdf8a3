#include "RestText.h"

#include "Utf8.h"
#include "WideText.h"

#include <boost/algorithm/string/replace.hpp>

#include <stdexcept>

namespace Platform
{
utility::string_t toRestText(const std::wstring& text)
{
    if (firstMalformed(text) != text.size()) {
        throw std::range_error("malformed wide text");
    }
    return text;
}

std::string utf8OfRestText(utility::string_t text) // NOLINT(performance-unnecessary-value-param): as on Linux
{
    return toUtf8(text);
}

std::wstring fromRestText(const utility::string_t& text)
{
    constexpr wchar_t replacement = 0xFFFD;
    std::wstring wellFormed = text;
    for (auto at = firstMalformed(wellFormed); at != wellFormed.size();
         at = firstMalformed(wellFormed, at + 1)) {
        wellFormed[at] = replacement;
    }
    return wellFormed;
}

utility::string_t restTextOfUtf8(std::string utf8) // NOLINT(performance-unnecessary-value-param): as on Linux
{
    return fromUtf8(utf8);
}

utility::string_t toParserText(utility::string_t json)
{
    boost::replace_all(json, L"\xFFFF", L"\\uffff"); // as the escape, it stays what it is
    return json;
}
} // namespace Platform
