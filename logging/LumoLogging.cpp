#include "LumoLogging.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>

namespace
{
const std::wstring passwordElement = L"password=";
const std::wstring passwordMask = L"***************";

/// The query element that no line shows; empty while there is no password. Made when it is first asked for,
/// so that it is there whenever a module's object logs.
std::wstring& hiddenElement()
{
    static std::wstring element;
    return element;
}

/// Values that Unicode keeps out of texts. log4cxx takes one of them for its own mark of an error, and some
/// of its versions then read past the end of the line.
bool isNoncharacter(wchar_t character)
{
    constexpr wchar_t lastTwoOfAPlane = 0xFFFE;
    return (character & lastTwoOfAPlane) == lastTwoOfAPlane || (character >= 0xFDD0 && character <= 0xFDEF);
}

std::string narrowed(const std::wstring& ascii)
{
    return {ascii.begin(), ascii.end()};
}
} // namespace

namespace Lumo
{
void hidePassword(const std::wstring& encodedPassword)
{
    hiddenElement() = encodedPassword.empty() ? std::wstring() : passwordElement + encodedPassword;
}

std::wstring withoutPassword(std::wstring text)
{
    if (!hiddenElement().empty()) {
        boost::replace_all(text, hiddenElement(), passwordElement + passwordMask);
    }
    return text;
}

void write(const log4cxx::LoggerPtr& logger, const log4cxx::LevelPtr& level, const std::wstring& line,
           const log4cxx::spi::LocationInfo& location)
{
    constexpr wchar_t replacement = 0xFFFD;
    auto presentable = withoutPassword(line);
    std::replace_if(presentable.begin(), presentable.end(), isNoncharacter, replacement);
    logger->forcedLog(level, presentable, location);
}

void write(const log4cxx::LoggerPtr& logger, const log4cxx::LevelPtr& level, const std::string& line,
           const log4cxx::spi::LocationInfo& location)
{
    if (hiddenElement().empty()) {
        logger->forcedLog(level, line, location);
        return;
    }
    logger->forcedLog(
        level,
        boost::replace_all_copy(line, narrowed(hiddenElement()), narrowed(passwordElement + passwordMask)),
        location);
}
} // namespace Lumo
