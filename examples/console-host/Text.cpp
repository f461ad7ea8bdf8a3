#include "Text.h"

#include <log4cxx/helpers/transcoder.h>

#include <algorithm>
#include <stdexcept>

using log4cxx::helpers::Transcoder;

std::wstring toWide(const std::string& utf8)
{
    log4cxx::LogString text;
    Transcoder::decodeUTF8(utf8, text);
    std::wstring wide;
    Transcoder::encode(text, wide);
    if (toUtf8(wide) != utf8) {
        throw std::invalid_argument("a text of the command line is not valid UTF-8");
    }
    return wide;
}

std::string toUtf8(const std::wstring& text)
{
    log4cxx::LogString decoded;
    Transcoder::decode(text, decoded);
    std::string utf8;
    Transcoder::encodeUTF8(decoded, utf8);
    return utf8;
}

std::string toTerminal(std::wstring text)
{
    const auto isControl = [](wchar_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); };
    std::replace_if(text.begin(), text.end(), isControl, L' ');
    return toUtf8(text);
}
