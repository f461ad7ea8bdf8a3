#include "JsonBudget.h"

#include <cpprest/json.h>

#include <algorithm>
#include <string_view>

namespace
{
using Character = utility::char_t;

constexpr std::uint64_t budget = 2048ULL * 1024 * 1024;
constexpr std::uint64_t ofCharacter = 1 + sizeof(Character); ///< received and converted
constexpr std::uint64_t inName = sizeof(Character);          ///< for each character of a member's name
constexpr std::uint64_t inText = sizeof(wchar_t);            ///< of a text: in its value, then in a record
constexpr std::uint64_t ofValue = 80;   ///< with its place in the array or object it is in
constexpr std::uint64_t ofNesting = 20; ///< more, of an array or object
constexpr std::uint64_t ofMember = 48;  ///< more, of one with a name
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
    std::uint64_t memory = json.size() * ofCharacter + ofValue;
    std::uint64_t text = 0; // that was read last, and may be a name
    std::uint64_t depth = 0;
    const auto* const end = json.data() + json.size();
    for (const auto* next = json.data(); next != end;) {
        const auto character = *next++;
        if (character == '"') {
            const auto* const start = next;
            next = endOfString(start, end);
            text = static_cast<std::uint64_t>(next - start);
            memory += text * inText;
        } else if (character == ':') {
            memory = memory + ofMember - text * (inText - inName);
            text = 0;
        } else if (opens(character)) {
            ++depth;
            memory += ofValue + ofNesting + (depth == 1 ? ofListed : 0);
        } else if (closes(character)) {
            depth -= depth > 0 ? 1 : 0;
        } else if (character == ',') {
            memory += ofValue + (depth == 1 ? ofListed : 0);
        }
    }
    return memory;
}

void requireAffordable(const utility::string_t& json)
{
    if (memoryOfJson(json) > budget) {
        throw web::json::json_exception(
            "The answer of the server holds more values than fit into 2 GiB of memory.");
    }
}
} // namespace VantryIntegrationApi::Utils
