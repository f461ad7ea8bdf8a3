/// @file
/// Text between the library's wide form and UTF-8, that of the wire and of log4cxx on some platforms.
#pragma once

#include <boost/locale/encoding_utf.hpp>

#include <string>

inline std::wstring wide(const std::string& utf8)
{
    return boost::locale::conv::utf_to_utf<wchar_t>(utf8);
}

inline std::wstring wide(const std::wstring& text)
{
    return text;
}

/// Each character, which is below 256, as a byte.
inline std::string toBytes(const std::wstring& text)
{
    std::string bytes;
    for (const auto character : text) {
        bytes += static_cast<char>(character);
    }
    return bytes;
}

inline std::string narrow(const std::wstring& text)
{
    return boost::locale::conv::utf_to_utf<char>(text);
}
