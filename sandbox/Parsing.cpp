#include "Parsing.h"

#include "Http.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <charconv>

namespace sandbox
{
namespace
{
std::optional<std::string> percentDecoded(std::string text)
{
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
        const std::string digits = text.substr(at + 1, 2);
        unsigned char byte = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (error != std::errc() || end != digits.data() + 2) {
            return std::nullopt;
        }
        text.replace(at, 3, 1, static_cast<char>(byte));
    }
    return text;
}

std::string fileNameFrom(std::string_view headers)
{
    headers.remove_prefix(std::min(headers.size(), headers.find("Content-Disposition: form-data;")));
    const std::string_view line = headers.substr(0, headers.find("\r\n"));
    const auto fileName = headerParameter(line, "filename");
    require(fileName && headerParameter(line, "name") == "file",
            "the part must be form-data, named \"file\" and with a file name");
    return std::string(*fileName);
}
} // namespace

std::string_view pathOf(std::string_view target)
{
    return target.substr(0, target.find('?'));
}

std::optional<std::string> parameterOf(std::string_view target, std::string_view name)
{
    target.remove_prefix(std::min(target.size(), pathOf(target).size() + 1));
    const std::string elements = '&' + std::string(target);
    const std::string start = '&' + std::string(name) + '=';
    const std::size_t found = elements.find(start);
    if (found == std::string::npos) {
        return std::nullopt;
    }
    const std::string value = elements.substr(found + start.size());
    return percentDecoded(value.substr(0, value.find('&')));
}

std::optional<std::string_view> headerParameter(std::string_view header, std::string_view name)
{
    for (std::size_t at = header.find(';'); at != std::string_view::npos; at = header.find(';')) {
        header.remove_prefix(std::min(header.size(), header.find_first_not_of("; ", at)));
        const std::string_view found = header.substr(0, header.find('='));
        header.remove_prefix(std::min(header.size(), found.size() + 1));
        const bool isQuoted = header.substr(0, 1) == "\"";
        header.remove_prefix(isQuoted ? 1 : 0);
        const std::string_view value = header.substr(0, header.find(isQuoted ? '"' : ';'));
        header.remove_prefix(value.size());
        if (boost::iequals(found, name)) {
            return value;
        }
    }
    return std::nullopt;
}

UploadedFile readUpload(std::string_view contentType, std::string_view body)
{
    const std::string boundary(headerParameter(contentType, "boundary").value_or(""));
    require(boost::istarts_with(contentType, "multipart/form-data;") && !boundary.empty(),
            "the content type must be multipart/form-data with a boundary");
    const std::string delimiter = "\r\n--" + boundary;
    const std::size_t start = boost::starts_with(body, "\r\n") ? 0 : 2; // the line end before it is optional
    require(boost::starts_with(body, (delimiter + "\r\n").substr(start)), "the body must begin with a part");
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t head = body.find(headEnd);
    require(head != std::string_view::npos, "the part's headers do not end");
    const std::string_view content = body.substr(head + headEnd.size());
    const std::size_t length = content.find(delimiter);
    const std::string_view rest =
        length == std::string_view::npos ? "" : content.substr(length + delimiter.size());
    require(rest == "--" || rest == "--\r\n", "the body must be one part and the closing delimiter");
    return {fileNameFrom(body.substr(0, head)), content.substr(0, length)};
}
} // namespace sandbox
