// An empty folder of the test's own, removed with everything in it. It works with the functions
// that tests replace, so it stands before the replacements.
#pragma once

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

namespace kit {

class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        static std::atomic<int> s_nFolder = 0;
        m_path = std::filesystem::temp_directory_path() /
                 ("kalvo-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++s_nFolder));
        std::filesystem::create_directories(m_path);
    }

    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const
    {
        return m_path;
    }

private:
    std::filesystem::path m_path;
};

inline void WriteTextFile(const std::filesystem::path& path, const std::string& strText)
{
    std::ofstream(path, std::ios::binary) << strText;
}

inline std::string ReadTextFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace kit
