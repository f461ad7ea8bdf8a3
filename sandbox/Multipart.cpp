#include "Multipart.h"

#include "Http.h"
#include "Target.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>

namespace sandbox
{
namespace
{
constexpr std::string_view headEnd = "\r\n\r\n";

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

UploadedFile readUpload(std::string_view contentType, std::string_view body)
{
    const std::string boundary(headerParameter(contentType, "boundary").value_or(""));
    require(boost::istarts_with(contentType, "multipart/form-data;") && !boundary.empty(),
            "the content type must be multipart/form-data with a boundary");
    const std::string delimiter = "\r\n--" + boundary;
    const std::size_t start = boost::starts_with(body, "\r\n") ? 0 : 2; // the line end before it is optional
    require(boost::starts_with(body, (delimiter + "\r\n").substr(start)), "the body must begin with a part");
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
