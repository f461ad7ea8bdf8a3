#include "Multipart.h"

#include "Http.h"
#include "Target.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <optional>

namespace sandbox
{
namespace
{
constexpr std::string_view lineEnd = "\r\n";

[[noreturn]] void refuse(const std::string& why)
{
    throw HttpError(400, why);
}

/// Takes the text up to the end mark, and the mark, off the rest; nothing if there is no mark.
std::optional<std::string_view> takeUntil(std::string_view& rest, std::string_view mark)
{
    const std::size_t length = rest.find(mark);
    if (length == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view text = rest.substr(0, length);
    rest.remove_prefix(length + mark.size());
    return text;
}

bool takeStart(std::string_view& rest, std::string_view start)
{
    if (rest.substr(0, start.size()) != start) {
        return false;
    }
    rest.remove_prefix(start.size());
    return true;
}

std::string delimiterFor(std::string_view contentType)
{
    const std::optional<std::string_view> boundary = headerParameter(contentType, "boundary");
    if (!boost::istarts_with(contentType, "multipart/form-data;") || !boundary || boundary->empty()) {
        refuse("the content type must be multipart/form-data with a boundary");
    }
    return "\r\n--" + std::string(*boundary);
}

std::string fileNameFrom(std::string_view headers)
{
    const std::size_t start = headers.find("Content-Disposition: form-data;");
    if (start != std::string_view::npos) {
        const std::string_view line = headers.substr(start, headers.find(lineEnd, start) - start);
        const std::optional<std::string_view> fileName = headerParameter(line, "filename");
        if (fileName && headerParameter(line, "name") == "file") {
            return std::string(*fileName);
        }
    }
    refuse("the part must be form-data, named \"file\" and with a file name");
}
} // namespace

UploadedFile readUpload(std::string_view contentType, std::string_view body)
{
    const std::string delimiter = delimiterFor(contentType);
    if (!takeStart(body, delimiter + "\r\n") && !takeStart(body, delimiter.substr(lineEnd.size()) + "\r\n")) {
        refuse("the body must begin with a part");
    }
    const std::optional<std::string_view> headers = takeUntil(body, "\r\n\r\n");
    if (!headers) {
        refuse("the part's headers do not end");
    }
    const std::optional<std::string_view> content = takeUntil(body, delimiter);
    if (!content || (body != "--" && body != "--\r\n")) {
        refuse("the body must be one part and the closing delimiter");
    }
    return {fileNameFrom(*headers), *content};
}
} // namespace sandbox
