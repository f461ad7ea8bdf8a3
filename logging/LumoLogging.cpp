#include "LumoLogging.h"

#include "Module.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace
{
constexpr std::wstring_view passwordElement = L"password=";
constexpr std::wstring_view passwordMask = L"***************";

/// The values of passwords that no line shows: never changed, but replaced as a whole, since a thread of the
/// library may still write a line when the host sets others.
using Secrets = std::vector<std::wstring>;

struct HiddenSecrets
{
    std::mutex mutex;
    std::shared_ptr<const Secrets> values = std::make_shared<Secrets>();
};

/// Made when it is first asked for, so that it is there whenever a module's object logs.
HiddenSecrets& hidden()
{
    static Platform::ModuleObject<HiddenSecrets> secrets;
    return secrets.object;
}

std::shared_ptr<const Secrets> hiddenSecrets()
{
    const std::lock_guard lock(hidden().mutex);
    return hidden().values;
}

/// The same but for the case of ASCII letters: a server may send hexadecimal digits back in the other one.
template <typename Character>
bool alike(Character left, wchar_t right)
{
    const auto small = [](auto character) {
        return character >= 'A' && character <= 'Z' ? static_cast<wchar_t>(character + ('a' - 'A'))
                                                    : static_cast<wchar_t>(character);
    };
    return small(left) == small(right);
}

template <typename Text>
bool standsAt(const std::wstring& secret, const Text& text, std::size_t at)
{
    return text.size() - at >= secret.size() &&
           std::equal(secret.begin(), secret.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                      [](wchar_t right, auto left) { return alike(left, right); });
}

/// Masks the value of each query element that holds a secret: the longest, where one begins like another.
template <typename Text>
void mask(Text& text)
{
    const auto secrets = hiddenSecrets();
    if (secrets->empty()) {
        return;
    }
    const Text element(passwordElement.begin(), passwordElement.end());
    for (auto at = text.find(element); at != Text::npos; at = text.find(element, at)) {
        at += element.size();
        std::size_t hidden = 0;
        for (const auto& secret : *secrets) {
            hidden = standsAt(secret, text, at) ? std::max(hidden, secret.size()) : hidden;
        }
        if (hidden > 0) {
            text.replace(at, hidden, Text(passwordMask.begin(), passwordMask.end()));
        }
    }
}

/// Values that Unicode keeps out of texts. log4cxx takes one of them for its own mark of an error, and some
/// of its versions then read past the end of the line.
bool isNoncharacter(wchar_t character)
{
    constexpr wchar_t lastTwoOfAPlane = 0xFFFE;
    return (character & lastTwoOfAPlane) == lastTwoOfAPlane || (character >= 0xFDD0 && character <= 0xFDEF);
}

} // namespace

namespace Lumo
{
void hidePassword(const std::wstring& encodedPassword)
{
    auto& secrets = hidden();
    const std::lock_guard lock(secrets.mutex);
    const auto& values = *secrets.values;
    if (encodedPassword.empty() || (!values.empty() && values.front() == encodedPassword)) {
        return;
    }
    auto next = std::make_shared<Secrets>(Secrets{encodedPassword});
    if (!values.empty()) {
        next->push_back(values.front());
    }
    secrets.values = std::move(next);
}

std::wstring withoutPassword(std::wstring text)
{
    mask(text);
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
    auto presentable = line;
    mask(presentable);
    logger->forcedLog(level, presentable, location);
}
} // namespace Lumo
