#include "PlannedAnswers.h"

#include "Encoding.h"
#include "Target.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>

namespace sandbox
{

namespace
{

constexpr std::uint64_t longestDelayMs = 3'600'000;

const std::string& textOf(const Json& member, const std::string& name)
{
    if (!member.is_string()) {
        throw HttpError(400, '"' + name + "\" must be a string");
    }
    return member.get_ref<const std::string&>();
}

std::uint64_t numberOf(const Json& member, const std::string& name, std::uint64_t least, std::uint64_t most)
{
    if (!member.is_number_unsigned() || member.get<std::uint64_t>() < least ||
        member.get<std::uint64_t>() > most) {
        throw HttpError(400, '"' + name + "\" must be a whole number from " + std::to_string(least) + " to " +
                                 std::to_string(most));
    }
    return member.get<std::uint64_t>();
}

std::string bytesOf(const Json& member, const std::string& name)
{
    std::optional<std::string> bytes = fromBase64(textOf(member, name));
    if (!bytes) {
        throw HttpError(400, '"' + name + "\" must be base64");
    }
    return *std::move(bytes);
}

std::vector<std::pair<std::string, std::string>> headersOf(const Json& member, const std::string& name)
{
    if (!member.is_object()) {
        throw HttpError(400, '"' + name + "\" must be an object");
    }
    std::vector<std::pair<std::string, std::string>> headers;
    for (const auto& [header, value] : member.items()) {
        headers.emplace_back(header, textOf(value, header));
    }
    return headers;
}

using MemberReader = std::function<void(PlannedAnswer&, const Json&, const std::string&)>;

const std::map<std::string, MemberReader, std::less<>>& memberReaders()
{
    static const std::map<std::string, MemberReader, std::less<>> readers{
        {"method", [](auto& plan, auto& member, auto& name) { plan.method = textOf(member, name); }},
        {"path", [](auto& plan, auto& member, auto& name) { plan.path = textOf(member, name); }},
        {"raw", [](auto& plan, auto& member, auto& name) { plan.raw = bytesOf(member, name); }},
        {"status",
         [](auto& plan, auto& member, auto& name) {
             plan.answer.status = static_cast<unsigned>(numberOf(member, name, 100, 999));
         }},
        {"reason", [](auto& plan, auto& member, auto& name) { plan.answer.reason = textOf(member, name); }},
        {"headers",
         [](auto& plan, auto& member, auto& name) { plan.answer.headers = headersOf(member, name); }},
        {"body", [](auto& plan, auto& member, auto& name) { plan.answer.body = textOf(member, name); }},
        {"delayMs",
         [](auto& plan, auto& member, auto& name) {
             plan.delay = std::chrono::milliseconds(numberOf(member, name, 0, longestDelayMs));
         }},
        {"closeAfter",
         [](auto& plan, auto& member, auto& name) {
             plan.closeAfter = numberOf(member, name, 0, std::numeric_limits<std::size_t>::max());
         }},
    };
    return readers;
}

bool fits(const PlannedAnswer& planned, const Request& request)
{
    return (!planned.method || *planned.method == view(request.method_string())) &&
           (!planned.path || *planned.path == pathOf(view(request.target())));
}

} // namespace

PlannedAnswer readPlannedAnswer(const Json& order)
{
    if (!order.is_object()) {
        throw HttpError(400, "a planned answer must be an object");
    }
    PlannedAnswer planned;
    for (const auto& [name, member] : order.items()) {
        const auto reader = memberReaders().find(name);
        if (reader == memberReaders().end()) {
            throw HttpError(400, "a planned answer has no member \"" + name + '"');
        }
        reader->second(planned, member, name);
    }
    for (const char* excluded : {"status", "reason", "headers", "body"}) {
        if (planned.raw && order.contains(excluded)) {
            throw HttpError(400, std::string(R"("raw" excludes ")") + excluded + '"');
        }
    }
    return planned;
}

void PlannedAnswers::add(PlannedAnswer answer)
{
    m_answers.push_back(std::move(answer));
}

void PlannedAnswers::clear()
{
    m_answers.clear();
}

std::optional<PlannedAnswer> PlannedAnswers::take(const Request& request)
{
    const auto found =
        std::find_if(m_answers.begin(), m_answers.end(),
                     [&request](const PlannedAnswer& planned) { return fits(planned, request); });
    if (found == m_answers.end()) {
        return std::nullopt;
    }
    PlannedAnswer planned = std::move(*found);
    m_answers.erase(found);
    return planned;
}

} // namespace sandbox
