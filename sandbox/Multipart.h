#pragma once

#include <string>
#include <string_view>

namespace sandbox
{

struct UploadedFile
{
    std::string fileName;
    std::string content;
};

// Reads a multipart/form-data body of exactly one part, named "file" and with a file name. Throws HttpError
// 400 for anything else. Text may precede the first delimiter line; after the closing one only white space
// may follow, so that content which holds a whole closing delimiter is refused instead of being cut short.
UploadedFile readUpload(std::string_view contentType, std::string_view body);

} // namespace sandbox
