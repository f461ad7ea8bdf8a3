/// @file
/// The program speaks UTF-8 with its surroundings and wide text with the library.
#pragma once

#include <boost/locale/encoding_utf.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>

inline std::wstring toWide(const std::string& utf8)
{
    try {
        return boost::locale::conv::utf_to_utf<wchar_t>(utf8, boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::invalid_argument("a text of the command line is not valid UTF-8");
    }
}

/// Text from elsewhere for the terminal: no control character of it gets there.
inline std::string toTerminal(std::wstring text)
{
    const auto isControl = [](wchar_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); };
    std::replace_if(text.begin(), text.end(), isControl, L' ');
    return boost::locale::conv::utf_to_utf<char>(text);
}
