#pragma once

#include <string>
#include <string_view>

namespace sandbox
{
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
