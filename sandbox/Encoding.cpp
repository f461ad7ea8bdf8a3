#include "Encoding.h"

#include "Http.h"

#include <boost/locale/encoding_utf.hpp>

namespace sandbox
{
using boost::locale::conv::utf_to_utf;

std::string toText(std::string_view bytes)
{
    std::u32string text;
    for (const unsigned char byte : bytes) {
        text += byte;
    }
    return utf_to_utf<char>(text);
}

std::string toBytes(const std::string& text)
{
    std::string bytes;
    for (const char32_t character : utf_to_utf<char32_t>(text)) {
        require(character <= 0xFF, "a character of \"raw\" is no byte");
        bytes += static_cast<char>(character);
    }
    return bytes;
}
} // namespace sandbox
