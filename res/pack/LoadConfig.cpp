// set-load-config: makes the loader of Windows see a program's load configuration.
//
//   set-load-config PROGRAM.exe
//
// The program (64-bit) has the configuration in a section named .ldcfg; its linker knows nothing of
// it. The section's address goes into the program's data directory, and the header's checksum is made
// right again: whoever takes a signature off the program gets the very bytes back. Exit status 0; 1 after a
// failure, with a line on standard error, and then the program is as it was.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <ios>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

// Offsets and sizes of the PE format, in bytes.
constexpr std::size_t kPeOffsetAt = 0x3C;
constexpr std::size_t kSectionCountAt = 6; // from the signature
constexpr std::size_t kOptionalHeaderSizeAt = 20;
constexpr std::size_t kOptionalHeaderAt = 24;
constexpr std::size_t kChecksumAt = 64;       // from the optional header
constexpr std::size_t kDataDirectoryAt = 112; // from the optional header
constexpr std::size_t kLoadConfigEntry = 10;
constexpr std::size_t kDataDirectoryEntrySize = 8;
constexpr std::size_t kSectionHeaderSize = 40;
constexpr std::size_t kSectionNameSize = 8;
constexpr std::size_t kSectionAddressAt = 12;
constexpr std::size_t kSectionFileOffsetAt = 20;
constexpr std::uint16_t kPe32Plus = 0x20B;
constexpr std::string_view kSectionName = ".ldcfg";

// A program file in memory. Every access outside it throws.
class Image
{
public:
    explicit Image(std::vector<char> bytes) : m_bytes(std::move(bytes)) {}

    template<typename T>
    [[nodiscard]] T Read(std::size_t offset) const
    {
        T value;
        std::memcpy(&value, At(offset, sizeof(value)), sizeof(value));
        return value;
    }

    [[nodiscard]] const char* At(std::size_t offset, std::size_t size) const
    {
        if (offset > m_bytes.size() || size > m_bytes.size() - offset) {
            throw std::runtime_error("is cut short");
        }
        return m_bytes.data() + offset;
    }

private:
    std::vector<char> m_bytes;
};

struct DirectoryEntry
{
    std::uint32_t address;
    std::uint32_t size;
};

struct Patch
{
    std::size_t offset;
    std::size_t checksumOffset;
    DirectoryEntry entry;
};

// The load configuration says its own size in its first word.
DirectoryEntry FindLoadConfig(const Image& image, std::size_t sections, std::uint16_t count)
{
    for (std::uint16_t n = 0; n < count; ++n) {
        const std::size_t header = sections + n * kSectionHeaderSize;
        const std::string_view name(image.At(header, kSectionNameSize), kSectionNameSize);
        if (name.substr(0, name.find('\0')) == kSectionName) {
            return {image.Read<std::uint32_t>(header + kSectionAddressAt),
                    image.Read<std::uint32_t>(image.Read<std::uint32_t>(header + kSectionFileOffsetAt))};
        }
    }
    throw std::runtime_error("has no section .ldcfg");
}

Patch FindPatch(const Image& image)
{
    const std::size_t pe = image.Read<std::uint32_t>(kPeOffsetAt);
    if (std::memcmp(image.At(pe, 4), "PE\0\0", 4) != 0 ||
        image.Read<std::uint16_t>(pe + kOptionalHeaderAt) != kPe32Plus) {
        throw std::runtime_error("is not a 64-bit program");
    }
    const std::size_t sections = pe + kOptionalHeaderAt + image.Read<std::uint16_t>(pe + kOptionalHeaderSizeAt);
    const std::size_t entry = pe + kOptionalHeaderAt + kDataDirectoryAt + kLoadConfigEntry * kDataDirectoryEntrySize;
    static_cast<void>(image.At(entry, kDataDirectoryEntrySize)); // it, and the checksum before it, are inside
    return {entry, pe + kOptionalHeaderAt + kChecksumAt,
            FindLoadConfig(image, sections, image.Read<std::uint16_t>(pe + kSectionCountAt))};
}

// The sum of the file's 16-bit words, the carry added in, and its size; the checksum's own place counts as zero.
std::uint32_t Checksum(const std::vector<char>& bytes, std::size_t checksumOffset)
{
    std::uint32_t sum = 0;
    for (std::size_t n = 0; n < bytes.size(); ++n) {
        if (n < checksumOffset || n >= checksumOffset + sizeof(std::uint32_t)) {
            const std::uint32_t byte = static_cast<unsigned char>(bytes[n]);
            sum += n % 2 == 0 ? byte : byte << 8U;
            sum = (sum & 0xFFFFU) + (sum >> 16U);
        }
    }
    return sum + static_cast<std::uint32_t>(bytes.size());
}

void SetLoadConfig(const char* path)
{
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    if (!file) {
        throw std::runtime_error("cannot be opened");
    }
    std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    const Patch patch = FindPatch(Image(bytes));
    std::memcpy(bytes.data() + patch.offset, &patch.entry, sizeof(patch.entry));
    const std::uint32_t checksum = Checksum(bytes, patch.checksumOffset);
    std::memcpy(bytes.data() + patch.checksumOffset, &checksum, sizeof(checksum));
    file.clear();
    file.seekp(0);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("cannot be written");
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: set-load-config PROGRAM.exe\n", stderr);
        return 2;
    }
    try {
        SetLoadConfig(argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "set-load-config: %s %s\n", argv[1], error.what());
        return 1;
    }
}
