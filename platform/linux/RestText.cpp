#include "RestText.h"

#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

namespace conv = boost::locale::conv;

utility::string_t Platform::toRestText(const std::wstring& text)
{
    try {
        return conv::utf_to_utf<char>(text, conv::stop);
    } catch (const conv::conversion_error&) {
        throw std::range_error("malformed wide text");
    }
}

std::wstring Platform::fromRestText(const utility::string_t& text)
{
    try {
        return conv::utf_to_utf<wchar_t>(text, conv::stop);
    } catch (const conv::conversion_error&) {
        throw std::range_error("malformed UTF-8 text");
    }
}
