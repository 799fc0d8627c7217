// pack-tools: makes the archive of the platform tools that the installer carries.
//
//   pack-tools OUT.zip MEMBER=FILE...
//
// Packs each FILE under the name MEMBER, in the order given. OUT.zip appears complete or not at all. Exit status 0, 1
// after a failure, 2 for a command line that it does not understand; both with a line on standard error.
#include "ZipArchive.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

Bytes ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::istreambuf_iterator<char> begin(file);
    Bytes data(begin, std::istreambuf_iterator<char>());
    if (!file.is_open() || file.bad()) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return data;
}

void WriteFile(const fs::path& path, const Bytes& data)
{
    fs::path unfinished = path;
    unfinished += ".unfinished";
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    file.close();
    std::error_code error;
    if (file) {
        fs::rename(unfinished, path, error);
    }
    if (!file || error) {
        fs::remove(unfinished, error);
        throw std::runtime_error("cannot write " + path.string());
    }
}

int Usage()
{
    std::fputs("usage: pack-tools OUT.zip MEMBER=FILE...\n", stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        return Usage();
    }
    try {
        std::vector<CMember> members;
        for (int i = 2; i < argc; i++) {
            const std::string_view argument = argv[i];
            const std::size_t equals = argument.find('=');
            if (equals == std::string_view::npos || equals == 0) {
                return Usage();
            }
            members.push_back({.m_name = std::string(argument.substr(0, equals)),
                               .m_data = ReadFile(fs::path(argument.substr(equals + 1)))});
        }
        const Bytes archive = WriteArchive(members);
        VerifyArchive(archive, members);
        WriteFile(argv[1], archive);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "pack-tools: %s\n", error.what());
        return 1;
    }
}
