#include "tools/ZipExtraction.h"

#include "app/ground/Platform.h"

#include <direct.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

namespace {

enum EXTRACT_RESULT : int
{
    EXTRACT_OK = 0,
    EXTRACT_INVALID_NAME = -2,
    EXTRACT_NO_ENTRY_RECORD = -3,
    EXTRACT_FAILED = -19,
    EXTRACT_NO_FOLDER = -23,
    EXTRACT_CLOSE_FAILED = -25,
};

// A full path with its terminator.
constexpr size_t kMaxPathBytes = 512;

constexpr BYTE kHostUnix = 3;
constexpr BYTE kHostMacOs = 19;
constexpr mz_uint32 kUnixLinkBit = 1U << 29;

bool IsSeparator(char ch)
{
    return ch == '/' || ch == '\\';
}

// The entry's name without leading separators and without "." and ".." components.
std::string NormalizeName(std::string_view name)
{
    std::string strNormalized;
    name.remove_prefix(std::min(name.find_first_not_of("/\\"), name.size()));
    while (!name.empty()) {
        const size_t nComponent = std::min(name.find_first_of("/\\"), name.size());
        const std::string_view component = name.substr(0, nComponent);
        const size_t nTaken = std::min(nComponent + 1, name.size());
        if (component != "." && component != "..") {
            strNormalized += name.substr(0, nTaken);
        }
        name.remove_prefix(nTaken);
    }
    return strNormalized;
}

void Widen(std::string_view path, WCHAR (&szPath)[kMaxPathBytes])
{
    const int cch =
        MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()), szPath, ARRAYSIZE(szPath) - 1);
    szPath[cch] = L'\0';
}

bool CreateFolder(std::string_view path)
{
    WCHAR szPath[kMaxPathBytes];
    Widen(path, szPath);
    return _wmkdir(szPath) == 0 || errno == EEXIST;
}

bool StartsWithDrive(std::string_view path)
{
    return path.size() >= 2 && path[1] == ':' &&
           ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
}

// Creates every folder that the path names before a separator; the root of a drive is not tried.
bool CreateParentFolders(std::string_view path)
{
    for (size_t n = StartsWithDrive(path) ? 3 : 1; n < path.size(); ++n) {
        if (IsSeparator(path[n]) && !CreateFolder(path.substr(0, n))) {
            return false;
        }
    }
    return true;
}

// A link could lead what is extracted after it out of the folder.
bool IsSymbolicLink(const mz_zip_archive_file_stat& entry)
{
    const int nHost = entry.m_version_made_by >> 8;
    return (nHost == kHostUnix || nHost == kHostMacOs) && (entry.m_external_attr & kUnixLinkBit) != 0;
}

EXTRACT_RESULT ExtractEntry(mz_zip_archive* pArchive, mz_uint nIndex, const std::string& strPrefix)
{
    mz_zip_archive_file_stat entry;
    if (!mz_zip_reader_file_stat(pArchive, nIndex, &entry)) {
        return EXTRACT_NO_ENTRY_RECORD;
    }
    if (entry.m_filename[0] == '\0') {
        return EXTRACT_INVALID_NAME;
    }
    std::string strPath = strPrefix + NormalizeName(entry.m_filename);
    strPath.resize(std::min(strPath.size(), kMaxPathBytes - 1));
    if (!CreateParentFolders(strPath)) {
        return EXTRACT_NO_FOLDER;
    }
    if (IsSymbolicLink(entry) || entry.m_is_directory) {
        return EXTRACT_OK;
    }
    if (!mz_zip_reader_extract_to_file(pArchive, nIndex, strPath.c_str(), 0)) {
        // Half a program would be taken for a whole one by the next start.
        WCHAR szPath[kMaxPathBytes];
        Widen(strPath, szPath);
        DeleteFileW(szPath);
        return EXTRACT_FAILED;
    }
    return EXTRACT_OK;
}

EXTRACT_RESULT ExtractEntries(mz_zip_archive* pArchive, const std::string& strPrefix)
{
    const mz_uint nEntries = mz_zip_reader_get_num_files(pArchive);
    EXTRACT_RESULT nResult = EXTRACT_OK;
    for (mz_uint nIndex = 0; nIndex < nEntries && nResult == EXTRACT_OK; ++nIndex) {
        nResult = ExtractEntry(pArchive, nIndex, strPrefix);
    }
    return nResult;
}

} // namespace

int ExtractAllEntries(mz_zip_archive* pArchive, const char* pszFolder)
{
    std::string strPrefix(pszFolder);
    if (strPrefix.size() + 1 > kMaxPathBytes) {
        return EXTRACT_INVALID_NAME;
    }
    if (strPrefix.empty() || !IsSeparator(strPrefix.back())) {
        strPrefix += '\\';
    }
    const EXTRACT_RESULT nResult = ExtractEntries(pArchive, strPrefix);
    return mz_zip_reader_end(pArchive) ? nResult : EXTRACT_CLOSE_FAILED;
}
