// See ZipArchive.h.
#include "ZipArchive.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <stdexcept>

#include <miniz.h>
#include <zopfli/zopfli.h>

namespace {

constexpr std::uint16_t kVersionNeeded = 20; // 2.0: deflate and folders
constexpr std::uint16_t kMethodDeflate = 8;
constexpr std::uint16_t kDosTime = 0;
constexpr std::uint16_t kDosDate = 0 << 9 | 1 << 5 | 1; // 1 January 1980, the first day there is

// What its two headers say of a member.
struct CEntry
{
    std::string_view m_name;
    std::uint32_t m_crc = 0;
    std::uint32_t m_packedSize = 0;
    std::uint32_t m_size = 0;
    std::uint32_t m_offset = 0;
};

void Put16(Bytes& to, std::uint16_t value)
{
    to.push_back(static_cast<std::uint8_t>(value));
    to.push_back(static_cast<std::uint8_t>(value >> 8));
}

void Put32(Bytes& to, std::uint32_t value)
{
    Put16(to, static_cast<std::uint16_t>(value));
    Put16(to, static_cast<std::uint16_t>(value >> 16));
}

template<typename To>
To Narrow(std::size_t value)
{
    if (value > std::numeric_limits<To>::max()) {
        throw std::runtime_error("too much for a plain zip archive");
    }
    return static_cast<To>(value);
}

Bytes Deflate(const Bytes& data)
{
    // Five rounds in at most thirty blocks: on the tools for the watch more rounds gain a tenth of a percent for twice
    // the time, more blocks a quarter of one for as much.
    ZopfliOptions options;
    ZopfliInitOptions(&options);
    options.numiterations = 5;
    options.blocksplittingmax = 30;

    unsigned char* packed = nullptr;
    std::size_t size = 0;
    ZopfliCompress(&options, ZOPFLI_FORMAT_DEFLATE, data.data(), data.size(), &packed, &size);
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(packed, &std::free);
    return {packed, packed + size};
}

// The part that a member's two headers have in common.
void PutCommonFields(Bytes& to, const CEntry& entry)
{
    Put16(to, kVersionNeeded);
    Put16(to, 0); // flags
    Put16(to, kMethodDeflate);
    Put16(to, kDosTime);
    Put16(to, kDosDate);
    Put32(to, entry.m_crc);
    Put32(to, entry.m_packedSize);
    Put32(to, entry.m_size);
    Put16(to, Narrow<std::uint16_t>(entry.m_name.size()));
    Put16(to, 0); // extra fields
}

void PutMember(Bytes& to, const CEntry& entry, const Bytes& packed)
{
    Put32(to, 0x04034b50);
    PutCommonFields(to, entry);
    to.insert(to.end(), entry.m_name.begin(), entry.m_name.end());
    to.insert(to.end(), packed.begin(), packed.end());
}

void PutDirectoryEntry(Bytes& to, const CEntry& entry)
{
    Put32(to, 0x02014b50);
    Put16(to, kVersionNeeded); // made by: MS-DOS, so that nobody looks for Unix permissions
    PutCommonFields(to, entry);
    Put16(to, 0); // comment
    Put16(to, 0); // disk
    Put16(to, 0); // internal attributes
    Put32(to, 0); // external attributes
    Put32(to, entry.m_offset);
    to.insert(to.end(), entry.m_name.begin(), entry.m_name.end());
}

void PutEnd(Bytes& to, std::size_t count, std::size_t directoryOffset)
{
    const std::size_t directorySize = to.size() - directoryOffset;
    Put32(to, 0x06054b50);
    Put16(to, 0); // this disk
    Put16(to, 0); // the directory's disk
    Put16(to, Narrow<std::uint16_t>(count));
    Put16(to, Narrow<std::uint16_t>(count));
    Put32(to, Narrow<std::uint32_t>(directorySize));
    Put32(to, Narrow<std::uint32_t>(directoryOffset));
    Put16(to, 0); // comment
}

// An open reader, closed with the object.
class CZipReader
{
public:
    explicit CZipReader(const Bytes& archive)
    {
        mz_zip_zero_struct(&m_zip);
        if (!mz_zip_reader_init_mem(&m_zip, archive.data(), archive.size(), 0)) {
            throw std::runtime_error("the archive cannot be read back");
        }
    }
    ~CZipReader()
    {
        mz_zip_reader_end(&m_zip);
    }
    CZipReader(const CZipReader&) = delete;
    CZipReader& operator=(const CZipReader&) = delete;

    mz_uint Count()
    {
        return mz_zip_reader_get_num_files(&m_zip);
    }

    bool Holds(mz_uint index, const CMember& member)
    {
        mz_zip_archive_file_stat entry;
        if (!mz_zip_reader_file_stat(&m_zip, index, &entry) || member.m_name != entry.m_filename ||
            entry.m_method != kMethodDeflate || entry.m_uncomp_size != member.m_data.size()) {
            return false;
        }
        // One byte more than there is: no room at all, for a member of no bytes, is refused.
        Bytes data(member.m_data.size() + 1);
        if (!mz_zip_reader_extract_to_mem(&m_zip, index, data.data(), data.size(), 0)) {
            return false;
        }
        data.pop_back();
        return data == member.m_data;
    }

private:
    mz_zip_archive m_zip;
};

} // namespace

Bytes WriteArchive(const std::vector<CMember>& members)
{
    Bytes archive;
    std::vector<CEntry> entries;
    for (const CMember& member : members) {
        if (member.m_name.empty()) {
            throw std::runtime_error("a member has no name");
        }
        const Bytes packed = Deflate(member.m_data);
        const mz_ulong crc = mz_crc32(MZ_CRC32_INIT, member.m_data.data(), member.m_data.size());
        entries.push_back({.m_name = member.m_name,
                           .m_crc = static_cast<std::uint32_t>(crc),
                           .m_packedSize = Narrow<std::uint32_t>(packed.size()),
                           .m_size = Narrow<std::uint32_t>(member.m_data.size()),
                           .m_offset = Narrow<std::uint32_t>(archive.size())});
        PutMember(archive, entries.back(), packed);
    }
    const std::size_t directoryOffset = archive.size();
    for (const CEntry& entry : entries) {
        PutDirectoryEntry(archive, entry);
    }
    PutEnd(archive, entries.size(), directoryOffset);
    return archive;
}

void VerifyArchive(const Bytes& archive, const std::vector<CMember>& members)
{
    CZipReader reader(archive);
    bool same = reader.Count() == members.size();
    for (std::size_t i = 0; same && i < members.size(); i++) {
        same = reader.Holds(static_cast<mz_uint>(i), members[i]);
    }
    if (!same) {
        throw std::runtime_error("the archive does not hold what was put into it");
    }
}
