#include "JsonBudget.h"

#include <cpprest/json.h>

#include <algorithm>
#include <string_view>

namespace
{
using Character = utility::char_t;

constexpr std::uint64_t budget = 2048ULL * 1024 * 1024;
constexpr std::uint64_t ofCharacter = 1 + 2 * sizeof(Character); ///< received, converted, and in the value
constexpr std::uint64_t ofValue = 96;   ///< with its place in the array or object it is in
constexpr std::uint64_t ofListed = 128; ///< a record of the list, for each value of the outermost

/// Where the string that begins before `from` has ended.
const Character* endOfString(const Character* from, const Character* end)
{
    while (from != end && *from != '"') {
        from += *from == '\\' && end - from > 1 ? 2 : 1;
    }
    return from == end ? end : from + 1;
}

bool opens(Character character)
{
    return character == '[' || character == '{';
}

bool closes(Character character)
{
    return character == ']' || character == '}';
}
} // namespace

namespace VantryIntegrationApi::Utils
{
std::uint64_t memoryOfJson(const utility::string_t& json)
{
    std::uint64_t values = 1;
    std::uint64_t listed = 0;
    std::uint64_t depth = 0;
    const auto* const end = json.data() + json.size();
    for (const auto* next = json.data(); next != end;) {
        const auto character = *next++;
        if (character == '"') {
            next = endOfString(next, end);
        } else if (opens(character)) {
            ++depth;
            ++values;
            listed += depth == 1 ? 1 : 0;
        } else if (closes(character)) {
            depth -= depth > 0 ? 1 : 0;
        } else if (character == ',') {
            ++values;
            listed += depth == 1 ? 1 : 0;
        }
    }
    return json.size() * ofCharacter + values * ofValue + listed * ofListed;
}

void requireAffordable(const utility::string_t& json)
{
    if (memoryOfJson(json) > budget) {
        throw web::json::json_exception(
            "The answer of the server holds more values than fit into 2 GiB of memory.");
    }
}
} // namespace VantryIntegrationApi::Utils
