// Anything at all as an archive, extracted to a disk in memory, by the product and once more as plainly as it can be
// written. Both must give the same result and leave the same disk; nothing may lie outside the folder.
//
// The input's first byte chooses: bit 0, whether the rest is the archive itself or its recipe (ArchiveRecipe.h);
// bit 1, whether paths may be longer than Windows grants by default; bit 2, whether the archive's file does not close
// well; bit 3, whether the disk is small; bits 4 to 6, the folder. The second byte makes a long folder longer.
#include "tests/fuzz/ArchiveRecipe.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/platform/Disk.h"

#include "tools/ZipExtraction.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace {

constexpr size_t kLargeDisk = 1 << 18;
constexpr size_t kSmallDisk = 1 << 10;
constexpr char kArchive[] = "D:\\archive";

std::string FolderFor(unsigned nChoice, size_t nLonger)
{
    switch (nChoice) {
    case 0:
        return "C:\\Users\\kalvo\\AppData\\Local\\KALVO_ApkInstaller";
    case 1:
        return "C:\\Users\\J\xC3\xB6rg \xE6\x89\x8B\\KALVO_ApkInstaller\\";
    case 2:
        return "C:/one\\two/";
    case 3:
        return "C:";
    case 4:
        return "";
    case 5:
        return "one\\two";
    case 6: // around the longest that is allowed
        return "C:\\" + std::string(200, 'f') + '\\' + std::string(100, 'f') + '\\' +
               std::string(55 + nLonger % 160, 'f');
    default: // around the longest that Windows grants by default
        return "C:\\" + std::string(100 + nLonger % 160, 'f');
    }
}

std::wstring Wide(const std::string& text)
{
    std::wstring wide(text.size() + 1, L'\0');
    const int nLength = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(nLength) - 1);
    return wide;
}

class Archive
{
public:
    Archive(Disk& disk, bool bCloseFails)
    {
        disk.MakeCurrent();
        m_bOpen = mz_zip_reader_init_file(&m_zip, kArchive, 0) != MZ_FALSE;
        disk.m_bCloseFails = bCloseFails;
    }

    ~Archive()
    {
        if (IsOpen()) {
            mz_zip_reader_end(&m_zip);
        }
    }

    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    bool IsOpen() const
    {
        return m_bOpen && m_zip.m_zip_mode != MZ_ZIP_MODE_INVALID;
    }

    mz_zip_archive* Zip()
    {
        return &m_zip;
    }

private:
    mz_zip_archive m_zip = {};
    bool m_bOpen;
};

// The reference.
namespace plainly {

struct PART
{
    std::string text;
    char chSeparator; // NUL behind the last part
};

std::vector<PART> PartsOf(const std::string& name)
{
    std::vector<PART> parts(1);
    for (const char ch : name) {
        if (ch == '/' || ch == '\\') {
            parts.back().chSeparator = ch;
            parts.emplace_back();
        } else {
            parts.back().text += ch;
        }
    }
    return parts;
}

std::string Normalized(std::string name)
{
    while (!name.empty() && (name[0] == '/' || name[0] == '\\')) {
        name.erase(0, 1);
    }
    std::string normalized;
    for (const PART& part : PartsOf(name)) {
        if (part.text != "." && part.text != "..") {
            normalized += part.text;
            if (part.chSeparator != '\0') {
                normalized += part.chSeparator;
            }
        }
    }
    return normalized;
}

bool MakeFolders(Disk& disk, const std::string& path)
{
    const bool bDrive = path.size() > 1 && path[1] == ':' && isalpha(static_cast<unsigned char>(path[0])) != 0;
    for (size_t n = 0; n < path.size(); ++n) {
        if ((path[n] == '/' || path[n] == '\\') && n >= (bDrive ? 3U : 1U)) {
            const int nError = disk.MakeFolder(Wide(path.substr(0, n)));
            if (nError != 0 && nError != EEXIST) {
                return false;
            }
        }
    }
    return true;
}

struct TARGET
{
    Disk* pDisk;
    std::wstring name;
};

size_t Write(void* pTarget, mz_uint64 /*nOffset*/, const void* p, size_t cb)
{
    auto* const pWhere = static_cast<TARGET*>(pTarget);
    return pWhere->pDisk->Append(pWhere->name, {static_cast<const char*>(p), cb});
}

bool ExtractFile(Disk& disk, mz_zip_archive* pZip, mz_uint n, const std::string& path)
{
    mz_zip_archive_file_stat entry;
    mz_zip_reader_file_stat(pZip, n, &entry);
    if (entry.m_is_directory || !entry.m_is_supported) {
        return false;
    }
    const std::optional<std::wstring> name = disk.CreateFile(Wide(path));
    if (!name) {
        return false;
    }
    TARGET target = {&disk, *name};
    return mz_zip_reader_extract_to_callback(pZip, n, Write, &target, 0) != MZ_FALSE;
}

// The entry's record holds the beginning alone.
std::string WholeName(mz_zip_archive* pZip, mz_uint n)
{
    std::string name(mz_zip_reader_get_filename(pZip, n, nullptr, 0), '\0');
    mz_zip_reader_get_filename(pZip, n, name.data(), static_cast<mz_uint>(name.size()));
    name.pop_back();
    return name;
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
    const bool bFolder = WholeName(pZip, n).back() == '/' || (entry.m_external_attr & 0x10) != 0;
    if (bLink || bFolder) {
        return 0;
    }
    if (!ExtractFile(disk, pZip, n, path)) {
        disk.DeleteFile(Wide(path));
        return -19;
    }
    return 0;
}

int ExtractAll(Disk& disk, Archive& archive, std::string folder, bool bCloseFails)
{
    if (folder.size() > 511) {
        return -2;
    }
    if (folder.empty() || (folder.back() != '/' && folder.back() != '\\')) {
        folder += '\\';
    }
    int nResult = 0;
    for (mz_uint n = 0; n < mz_zip_reader_get_num_files(archive.Zip()) && nResult == 0; ++n) {
        nResult = ExtractEntry(disk, archive.Zip(), n, folder);
    }
    return bCloseFails ? -25 : nResult;
}

} // namespace plainly

// Files lie below the folder; folders do, or on the way to it. The longest path leaves no room for a separator, so that
// what is extracted gets the path of the folder itself; that fails where the folder exists, as it does for the program.
void DemandInside(const Disk& disk, const std::wstring& folder, bool bLongest)
{
    const std::wstring archive = *Disk::Resolve(Wide(kArchive));
    const std::wstring prefix = folder + L'\\';
    for (const auto& [name, bytes] : disk.Files()) {
        Demand(name == archive || name.starts_with(prefix) || name.starts_with(folder + L':') ||
                   (name == folder && bLongest),
               "no file lands outside the folder");
    }
    for (const std::wstring& name : disk.Folders()) {
        Demand((name + L'\\').starts_with(prefix) || prefix.starts_with(name + L'\\'),
               "no folder lands outside the folder");
    }
}

void Compare(const std::string& archive, const std::string& folder, unsigned nChoices)
{
    const bool bCloseFails = (nChoices & 4) != 0;
    Disk disk((nChoices & 8) != 0 ? kSmallDisk : kLargeDisk, (nChoices & 2) != 0);
    disk.Put(Wide(kArchive), archive);
    Disk reference = disk;
    {
        Archive product(disk, bCloseFails);
        if (!product.IsOpen()) {
            Demand(disk.m_nOpen == 0, "what is no archive stays open nowhere");
            return;
        }
        // A block of just the path's size.
        const std::unique_ptr<char[]> pszFolder(new char[folder.size() + 1]);
        std::copy_n(folder.c_str(), folder.size() + 1, pszFolder.get());
        const int nResult = ExtractAllEntries(product.Zip(), pszFolder.get());

        Archive plain(reference, bCloseFails);
        Demand(nResult == plainly::ExtractAll(reference, plain, folder, bCloseFails), "the result is the reference's");
        Demand(product.IsOpen() == (folder.size() > 511), "the archive is closed unless the folder's path is too long");
        Demand(disk.m_nOpen == (product.IsOpen() ? 1 : 0), "no other file stays open");
    }
    Demand(disk.Files() == reference.Files(), "the files are the reference's");
    Demand(disk.Folders() == reference.Folders(), "the folders are the reference's");
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
    Compare(archive, FolderFor((nChoices >> 4) & 7, pData[1]), nChoices);
    return 0;
}
