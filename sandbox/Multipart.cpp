#include "Multipart.h"

#include "Http.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace sandbox
{

namespace
{

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view blanks = " \t";
constexpr std::size_t longestBoundary = 70;

[[noreturn]] void refuse(const std::string& why)
{
    throw HttpError(400, why);
}

std::string_view trimmed(std::string_view text)
{
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(blanks)));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// The value of a header without its parameters.
std::string_view mainValue(std::string_view header)
{
    return trimmed(header.substr(0, header.find(';')));
}

// Takes the next "; name=value" off the header's rest. A quoted value ends at the next quote: a backslash
// stands for itself, as in the file names that Windows programs send.
std::optional<std::pair<std::string_view, std::string_view>> nextParameter(std::string_view& rest)
{
    const std::size_t start = rest.find(';');
    const std::size_t equals = start == std::string_view::npos ? start : rest.find('=', start);
    if (equals == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view name = trimmed(rest.substr(start + 1, equals - start - 1));
    rest.remove_prefix(equals + 1);
    if (!rest.empty() && rest.front() == '"') {
        rest.remove_prefix(1);
        const std::string_view value = rest.substr(0, rest.find('"'));
        rest.remove_prefix(value.size());
        return std::pair(name, value);
    }
    const std::string_view value = rest.substr(0, rest.find(';'));
    rest.remove_prefix(value.size());
    return std::pair(name, trimmed(value));
}

std::optional<std::string_view> parameterOfHeader(std::string_view header, std::string_view name)
{
    while (const auto parameter = nextParameter(header)) {
        if (boost::iequals(parameter->first, name)) {
            return parameter->second;
        }
    }
    return std::nullopt;
}

std::string boundaryOf(std::string_view contentType)
{
    if (!boost::iequals(mainValue(contentType), "multipart/form-data")) {
        refuse("the content type must be multipart/form-data");
    }
    const std::optional<std::string_view> boundary = parameterOfHeader(contentType, "boundary");
    if (!boundary || boundary->empty() || boundary->size() > longestBoundary) {
        refuse("the content type must name a boundary of 1 to 70 characters");
    }
    return std::string(*boundary);
}

struct DelimiterLine
{
    std::size_t start; // of the line end before it, which belongs to the delimiter
    std::size_t end;
    bool closing;
};

// Whether a whole delimiter line begins at this place. Text that merely starts like one is content.
std::optional<DelimiterLine> delimiterAt(std::string_view body, std::size_t start, std::size_t length)
{
    std::size_t at = start + length;
    const bool closing = body.substr(at, 2) == "--";
    at += closing ? 2 : 0;
    at = std::min(body.size(), body.find_first_not_of(blanks, at));
    if (body.substr(at, 2) == lineEnd) {
        return DelimiterLine{start, at + lineEnd.size(), closing};
    }
    if (closing && at == body.size()) {
        return DelimiterLine{start, at, closing};
    }
    return std::nullopt;
}

std::optional<DelimiterLine> findDelimiter(std::string_view body, const std::string& boundary,
                                           std::size_t from)
{
    const std::string delimiter = "\r\n--" + boundary;
    for (std::size_t at = body.find(delimiter, from); at != std::string_view::npos;
         at = body.find(delimiter, at + 1)) {
        if (const auto line = delimiterAt(body, at, delimiter.size())) {
            return line;
        }
    }
    return std::nullopt;
}

std::optional<DelimiterLine> findFirstDelimiter(std::string_view body, const std::string& boundary)
{
    const std::string delimiter = "--" + boundary;
    if (body.substr(0, delimiter.size()) == delimiter) {
        if (const auto line = delimiterAt(body, 0, delimiter.size())) {
            return line;
        }
    }
    return findDelimiter(body, boundary, 0);
}

std::string_view headerNamed(std::string_view headers, std::string_view name)
{
    while (!headers.empty()) {
        const std::string_view line = headers.substr(0, headers.find(lineEnd));
        const std::size_t colon = line.find(':');
        if (colon != std::string_view::npos && boost::iequals(line.substr(0, colon), name)) {
            return trimmed(line.substr(colon + 1));
        }
        headers.remove_prefix(std::min(headers.size(), line.size() + lineEnd.size()));
    }
    return {};
}

std::string fileNameOf(std::string_view disposition)
{
    if (!boost::iequals(mainValue(disposition), "form-data")) {
        refuse("the part's content disposition must be form-data");
    }
    if (parameterOfHeader(disposition, "name") != "file") {
        refuse("the part must be named \"file\"");
    }
    const std::optional<std::string_view> fileName = parameterOfHeader(disposition, "filename");
    if (!fileName) {
        refuse("the part must have a file name");
    }
    return std::string(*fileName);
}

} // namespace

UploadedFile readUpload(std::string_view contentType, std::string_view body)
{
    const std::string boundary = boundaryOf(contentType);
    const std::optional<DelimiterLine> opening = findFirstDelimiter(body, boundary);
    if (!opening || opening->closing) {
        refuse("the body has no part");
    }
    const std::size_t headersEnd = body.find("\r\n\r\n", opening->end);
    if (headersEnd == std::string_view::npos) {
        refuse("the part's headers do not end");
    }
    const std::size_t contentStart = headersEnd + 4;
    const std::optional<DelimiterLine> closing = findDelimiter(body, boundary, contentStart);
    if (!closing) {
        refuse("the closing delimiter is missing");
    }
    if (!closing->closing) {
        refuse("the body must have exactly one part");
    }
    if (body.find_first_not_of(" \t\r\n", closing->end) != std::string_view::npos) {
        refuse("something follows the closing delimiter");
    }
    const std::string_view headers = body.substr(opening->end, headersEnd - opening->end);
    return {fileNameOf(headerNamed(headers, "Content-Disposition")),
            std::string(body.substr(contentStart, closing->start - contentStart))};
}

} // namespace sandbox
