// What the sandbox reads from strangers: nothing but the documented refusals comes of it.
//
// Input: a character that chooses the reader, then what it reads.
#include "sandbox/Encoding.h"
#include "sandbox/Multipart.h"
#include "sandbox/Plans.h"
#include "sandbox/Target.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace
{
void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void readMultipart(std::string_view input)
{
    const auto line = input.substr(0, input.find('\n'));
    const auto body = input.substr(line.size() == input.size() ? line.size() : line.size() + 1);
    const auto file = sandbox::readUpload(line, body);
    require(body.find(file.content) != std::string_view::npos);
    require(body.find(file.fileName) != std::string_view::npos);
}

void readPlan(std::string_view input)
{
    const auto planned = sandbox::readPlannedAnswer(sandbox::Json::parse(input));
    require(planned.answer.status >= 100 && planned.answer.status <= 999);
}

void readBase64(std::string_view input)
{
    require(sandbox::fromBase64(sandbox::toBase64(input)) == input);
    if (const auto bytes = sandbox::fromBase64(input)) {
        require(sandbox::fromBase64(sandbox::toBase64(*bytes)) == *bytes);
    }
}

void readTarget(std::string_view input)
{
    require(input.substr(0, sandbox::pathOf(input).size()) == sandbox::pathOf(input));
    if (const auto value = sandbox::parameterOf(input, "a")) {
        require(value->size() <= input.size());
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    try {
        switch (static_cast<unsigned char>(data[0] - '0') % 5) {
        case 0:
            readMultipart(input);
            break;
        case 1:
            readPlan(input);
            break;
        case 2:
            sandbox::readPlannedConnection(sandbox::Json::parse(input));
            break;
        case 3:
            readBase64(input);
            break;
        default:
            readTarget(input);
        }
    } catch (const sandbox::HttpError& refusal) {
        require(refusal.status == 400);
    } catch (const sandbox::Json::exception&) {
        return 0; // what is no JSON, or has another shape
    }
    return 0;
}
