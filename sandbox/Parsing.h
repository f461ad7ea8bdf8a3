/// @file
/// Reads what a request holds: its target, the parameters of a header, an upload.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox
{
std::string_view pathOf(std::string_view target);

/// The percent-decoded value of the first query parameter of that name; nothing when it is absent or when
/// its percent-encoding is broken.
std::optional<std::string> parameterOf(std::string_view target, std::string_view name);

/// The value of a parameter in a header "value; name=value; ...", with or without quotes. A quoted one ends
/// at the next quote: a backslash stands for itself, as in the file names that Windows programs send.
std::optional<std::string_view> headerParameter(std::string_view header, std::string_view name);

struct UploadedFile
{
    std::string fileName;
    std::string_view content; ///< of the body
};

/// Reads a multipart/form-data body of exactly one part, named "file" and with a file name. Content that
/// holds the delimiter is refused instead of being cut short.
/// @throws HttpError 400 for anything else
UploadedFile readUpload(std::string_view contentType, std::string_view body);
} // namespace sandbox
