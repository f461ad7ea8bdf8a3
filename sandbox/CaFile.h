#pragma once

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace sandbox
{
/// The certificate authority as a file for clients: at the path that the user named, where it stays, or in
/// a temporary file that goes with this object.
class CaFile
{
public:
    /// @param wanted empty: a temporary file
    CaFile(const std::string& pem, const std::filesystem::path& wanted)
        : m_isTemporary(wanted.empty()),
          m_path(m_isTemporary
                     ? std::filesystem::temp_directory_path() /
                           ("vantry-sandbox-" + to_string(boost::uuids::random_generator()()) + ".pem")
                     : std::filesystem::absolute(wanted).lexically_normal())
    {
        std::ofstream file(m_path, std::ios::binary | std::ios::trunc);
        if (!(file << pem << std::flush)) {
            throw std::runtime_error("cannot write " + m_path.u8string());
        }
    }

    ~CaFile()
    {
        if (m_isTemporary) {
            std::error_code leftBehind; // a file that cannot be removed is no reason to fail at exit
            std::filesystem::remove(m_path, leftBehind);
        }
    }

    CaFile(const CaFile&) = delete;
    CaFile& operator=(const CaFile&) = delete;
    CaFile(CaFile&&) = delete;
    CaFile& operator=(CaFile&&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    bool m_isTemporary;
    std::filesystem::path m_path;
};
} // namespace sandbox
