// Anything at all as an archive, extracted to a disk in memory, by the product and once more as plainly as it can be
// written. Both must give the same result and leave the same disk; nothing may lie outside the folder.
//
// The input's first byte chooses: bit 0, whether the rest is the archive itself or a list of its entries (ArchiveOf);
// bit 3, whether the disk is small; bits 4 to 6, the folder. The second byte makes a long folder longer.
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/platform/Disk.h"
#include "tests/unit/tools/StoredZip.h"

#include "tools/ZipExtraction.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr size_t kLargeDisk = 1 << 18;
constexpr size_t kSmallDisk = 1 << 10;
constexpr size_t kMaxEntries = 64;

std::string FolderFor(unsigned nChoice, size_t nLonger)
{
    static constexpr const char* kFolders[] = {
        "C:\\Users\\kalvo\\AppData\\Local\\KALVO_ApkInstaller",
        "C:\\Users\\J\xC3\xB6rg \xE6\x89\x8B\\KALVO_ApkInstaller\\",
        "C:/one\\two/",
        "C:",
        "",
        "one\\two",
    };
    // Or around the longest that is allowed.
    return nChoice < std::size(kFolders) ? kFolders[nChoice] : "C:\\" + std::string(380 + nLonger, 'f');
}

std::string TakeBytes(std::span<const uint8_t>& rest, size_t nBytes)
{
    const auto taken = rest.first(std::min(nBytes, rest.size()));
    rest = rest.subspan(taken.size());
    return {taken.begin(), taken.end()};
}

// The low byte comes first. What the end cuts off is 0.
uint32_t TakeNumber(std::span<const uint8_t>& rest, size_t nBytes)
{
    const std::string bytes = TakeBytes(rest, nBytes);
    uint32_t n = 0;
    for (size_t i = bytes.size(); i > 0; --i) {
        n = (n << 8) | static_cast<uint8_t>(bytes[i - 1]);
    }
    return n;
}

// Each entry is a byte, of which bit 0 makes its check sum wrong and bit 1 its record unreadable; two bytes and four,
// the version that made it and its attributes; its name and its text, each behind a length of two bytes.
std::string ArchiveOf(std::span<const uint8_t> rest)
{
    std::vector<ZipEntry> entries;
    while (!rest.empty() && entries.size() < kMaxEntries) {
        ZipEntry entry;
        const uint32_t nFaults = TakeNumber(rest, 1);
        entry.nCrcError = nFaults & 1;
        entry.bSizeMissing = (nFaults & 2) != 0;
        entry.nVersionMadeBy = static_cast<uint16_t>(TakeNumber(rest, 2));
        entry.nAttributes = TakeNumber(rest, 4);
        entry.strName = TakeBytes(rest, TakeNumber(rest, 2));
        entry.strText = TakeBytes(rest, TakeNumber(rest, 2));
        entries.push_back(entry);
    }
    return StoredZip(entries);
}

std::wstring Wide(const std::string& text)
{
    std::wstring wide(text.size() + 1, L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    return wide.c_str();
}

// The reference.
namespace plainly {

// Without the separators in front and without "." and "..".
std::string Normalized(const std::string& name)
{
    std::string normalized;
    size_t nFrom = std::min(name.find_first_not_of("/\\"), name.size());
    while (nFrom < name.size()) {
        const size_t nEnd = std::min(name.find_first_of("/\\", nFrom), name.size());
        const std::string part = name.substr(nFrom, nEnd - nFrom);
        if (part != "." && part != "..") {
            normalized += part + name.substr(nEnd, 1);
        }
        nFrom = nEnd + 1;
    }
    return normalized;
}

bool MakeFolders(Disk& disk, const std::string& path)
{
    const bool bDrive = path.size() > 1 && path[1] == ':' && isalpha(static_cast<unsigned char>(path[0])) != 0;
    for (size_t n = bDrive ? 3 : 1; n < path.size(); ++n) {
        if (path[n] == '/' || path[n] == '\\') {
            const int nError = disk.MakeFolder(Wide(path.substr(0, n)));
            if (nError != 0 && nError != EEXIST) {
                return false;
            }
        }
    }
    return true;
}

size_t Collect(void* pBytes, mz_uint64 /*nOffset*/, const void* p, size_t cb)
{
    static_cast<std::string*>(pBytes)->append(static_cast<const char*>(p), cb);
    return cb;
}

bool ExtractFile(Disk& disk, mz_zip_archive* pZip, mz_uint n, const std::wstring& path)
{
    std::string* const pFile = mz_zip_reader_is_file_supported(pZip, n) ? disk.CreateFile(path) : nullptr;
    std::string bytes;
    return pFile != nullptr && mz_zip_reader_extract_to_callback(pZip, n, Collect, &bytes, 0) != MZ_FALSE &&
           disk.Append(*pFile, bytes);
}

int ExtractEntry(Disk& disk, mz_zip_archive* pZip, mz_uint n, const std::string& folder)
{
    mz_zip_archive_file_stat entry;
    if (!mz_zip_reader_file_stat(pZip, n, &entry)) {
        return -3;
    }
    const std::string name = entry.m_filename;
    if (name.empty()) {
        return -2;
    }
    const std::string path = (folder + Normalized(name)).substr(0, 511);
    if (!MakeFolders(disk, path)) {
        return -23;
    }
    const unsigned nHost = entry.m_version_made_by / 256;
    const bool bLink = (nHost == 3 || nHost == 19) && (entry.m_external_attr & 0x20000000) != 0;
    if (bLink || mz_zip_reader_is_file_a_directory(pZip, n) || ExtractFile(disk, pZip, n, Wide(path))) {
        return 0;
    }
    disk.DeleteFile(Wide(path));
    return -19;
}

int ExtractAll(Disk& disk, mz_zip_archive* pZip, std::string folder)
{
    if (folder.size() > 511) {
        return -2;
    }
    if (folder.empty() || (folder.back() != '/' && folder.back() != '\\')) {
        folder += '\\';
    }
    int nResult = 0;
    for (mz_uint n = 0; n < mz_zip_reader_get_num_files(pZip) && nResult == 0; ++n) {
        nResult = ExtractEntry(disk, pZip, n, folder);
    }
    return nResult;
}

} // namespace plainly

// Everything lies below the folder or is on the way to it. The longest path leaves no room for a separator, so that
// what is extracted gets the path of the folder itself; that fails where the folder exists, as it does for the program.
void DemandInside(const Disk& disk, const std::wstring& folder, bool bLongest)
{
    const std::wstring prefix = folder + L'\\';
    for (const auto& [name, bytes] : disk.Entries()) {
        const bool bOnTheWay = !bytes && prefix.starts_with(name + L'\\');
        Demand(bOnTheWay || name.starts_with(prefix) || (bLongest && name == folder), "nothing lands outside");
    }
}

void Compare(const std::string& archive, const std::string& folder, size_t nRoom)
{
    Disk disk(archive, nRoom);
    Disk reference = disk;
    disk.MakeCurrent();
    mz_zip_archive zip = {};
    if (!mz_zip_reader_init_file(&zip, "archive", 0)) {
        return;
    }
    // A block of just the path's size.
    const std::unique_ptr<char[]> pszFolder(new char[folder.size() + 1]);
    std::copy_n(folder.c_str(), folder.size() + 1, pszFolder.get());
    const int nResult = ExtractAllEntries(&zip, pszFolder.get());
    const bool bOpen = mz_zip_get_mode(&zip) != MZ_ZIP_MODE_INVALID;
    Demand(bOpen == (folder.size() > 511), "the archive is closed unless the folder's path is too long");
    mz_zip_reader_end(&zip);

    zip = {};
    Demand(mz_zip_reader_init_file(&zip, "archive", 0) != MZ_FALSE, "what was an archive is one");
    Demand(nResult == plainly::ExtractAll(reference, &zip, folder), "the result is the reference's");
    mz_zip_reader_end(&zip);
    Demand(disk.Entries() == reference.Entries(), "the files and folders are the reference's");
    DemandInside(disk, *Disk::Resolve(Wide(folder)), folder.size() == 511);
}

} // namespace

// Deflated data may refer to text before its own beginning. miniz then copies what its memory happens to hold, and
// notices at the check sum; filled memory makes that the same each time.
extern "C" const char* __asan_default_options()
{
    return "max_malloc_fill_size=1048576:malloc_fill_byte=190";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (nSize < 2) {
        return 0;
    }
    const std::span<const uint8_t> rest(pData + 2, nSize - 2);
    const unsigned nChoices = pData[0];
    const std::string archive = (nChoices & 1) != 0 ? std::string(rest.begin(), rest.end()) : ArchiveOf(rest);
    Compare(archive, FolderFor((nChoices >> 4) & 7, pData[1]), (nChoices & 8) != 0 ? kSmallDisk : kLargeDisk);
    return 0;
}
