#include "CaFile.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace sandbox
{

namespace
{

std::filesystem::path createPrivateFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "vantry-sandbox-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot create " + pattern);
    }
    return pattern;
}

void write(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text << std::flush;
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "cannot write " + path.string());
    }
}

} // namespace

CaFile::CaFile(const std::string& pem, const std::filesystem::path& wanted)
    : m_folder(wanted.empty() ? createPrivateFolder() : std::filesystem::path()),
      m_path(wanted.empty() ? m_folder / "ca.pem" : std::filesystem::absolute(wanted).lexically_normal())
{
    write(m_path, pem);
}

CaFile::~CaFile()
{
    if (!m_folder.empty()) {
        std::error_code leftBehind; // a temporary folder that cannot be removed is no reason to fail at exit
        std::filesystem::remove_all(m_folder, leftBehind);
    }
}

} // namespace sandbox
