#pragma once

#include <filesystem>
#include <string>

namespace sandbox
{

// The certificate authority as a file for clients: at the path that the user named, where it stays, or in a
// private folder that goes with this object.
class CaFile
{
public:
    CaFile(const std::string& pem, const std::filesystem::path& wanted);
    ~CaFile();
    CaFile(const CaFile&) = delete;
    CaFile& operator=(const CaFile&) = delete;
    CaFile(CaFile&&) = delete;
    CaFile& operator=(CaFile&&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_folder;
    std::filesystem::path m_path;
};

} // namespace sandbox
