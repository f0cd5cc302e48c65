#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include <base/path_rules.h>

/// A folder of its own for one test, gone when the test is over.
class TempFolder
{
public:
    TempFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kv-test-XXXXXX").string();
        m_path = ::mkdtemp(pattern.data());
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    /// A path in the folder, as the rooms take it.
    TvString file(const std::string& name) const
    {
        return base::pathFromNative((m_path / name).string());
    }
    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(m_path / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const
    {
        std::ifstream in(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

private:
    std::filesystem::path m_path;
};
