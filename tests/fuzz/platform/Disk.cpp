#include "tests/fuzz/platform/Disk.h"

#include "tests/fuzz/Demand.h"

#include <direct.h>
#include <sys/utime.h>

#include <algorithm>
#include <cstdio>

namespace {

Disk* g_pCurrent = nullptr;

wchar_t LowerCase(wchar_t ch)
{
    return ch >= L'A' && ch <= L'Z' ? static_cast<wchar_t>(ch + (L'a' - L'A')) : ch;
}

bool IsDevice(std::wstring_view segment)
{
    static const std::set<std::wstring, std::less<>> s_devices = {
        L"con",  L"prn",  L"aux",  L"nul",  L"com1", L"com2", L"com3", L"com4", L"com5", L"com6", L"com7",
        L"com8", L"com9", L"lpt1", L"lpt2", L"lpt3", L"lpt4", L"lpt5", L"lpt6", L"lpt7", L"lpt8", L"lpt9"};
    segment = segment.substr(0, segment.find_first_of(L".:"));
    segment = segment.substr(0, segment.find_last_not_of(L' ') + 1);
    return s_devices.contains(segment);
}

bool IsPlainName(std::wstring_view segment)
{
    return !segment.empty() && segment.size() <= 255 && std::ranges::all_of(segment, [](wchar_t ch) {
        return ch >= L' ' && std::wstring_view(L"<>:\"|?*").find(ch) == std::wstring_view::npos;
    });
}

// Appends the segments of a lower-case path with backslashes, behind its drive, to the drive's name.
void AppendSegments(std::wstring& name, std::wstring_view rest)
{
    // At the very end all periods and blanks go, unless they are a segment that means a folder.
    const std::wstring_view last = rest.substr(rest.find_last_of(L'\\') + 1);
    if (last != L"." && last != L"..") {
        rest.remove_suffix(last.size() - (last.find_last_not_of(L". ") + 1));
    }
    const size_t nDrive = name.size();
    while (!rest.empty()) {
        const size_t nEnd = std::min(rest.find(L'\\'), rest.size());
        std::wstring_view segment = rest.substr(0, nEnd);
        rest.remove_prefix(std::min(nEnd + 1, rest.size()));
        if (segment == L"..") {
            name.resize(std::max(nDrive, std::min(name.rfind(L'\\'), name.size())));
        } else if (!segment.empty() && segment != L".") {
            if (segment.ends_with(L'.') && !segment.ends_with(L"..")) {
                segment.remove_suffix(1);
            }
            (name += L'\\') += segment;
        }
    }
}

// Takes the segment "file::$data" for the file that it means. False when one of the segments can be no name.
bool AcceptSegments(std::wstring& name)
{
    size_t n = name.find(L'\\');
    while (n != std::wstring::npos) {
        const size_t nEnd = std::min(name.find(L'\\', n + 1), name.size());
        const std::wstring_view segment = std::wstring_view(name).substr(n + 1, nEnd - n - 1);
        const size_t nColon = nEnd == name.size() ? segment.find(L':') : std::wstring::npos;
        if (!IsPlainName(segment.substr(0, nColon))) {
            return false;
        }
        if (nColon != std::wstring::npos) {
            const std::wstring_view stream = segment.substr(nColon + 1);
            if (stream != L":$data") {
                return IsPlainName(stream);
            }
            name.resize(n + 1 + nColon);
        }
        n = name.find(L'\\', n + 1);
    }
    return true;
}

std::wstring FolderOf(const std::wstring& name)
{
    return name.substr(0, name.find_last_of(L'\\'));
}

bool EndsInSeparator(std::wstring_view path)
{
    return path.ends_with(L'\\') || path.ends_with(L'/');
}

// What a FILE of the native C library works on.
struct OPEN_FILE
{
    Disk* pDisk;
    std::wstring name;
    size_t nPosition;
    bool bReads;
};

ssize_t ReadFile(void* pCookie, char* pch, size_t cb)
{
    auto* const pFile = static_cast<OPEN_FILE*>(pCookie);
    const std::string& bytes = pFile->pDisk->Files().at(pFile->name);
    const size_t nTaken = pFile->nPosition < bytes.size() ? bytes.copy(pch, cb, pFile->nPosition) : 0;
    pFile->nPosition += nTaken;
    return static_cast<ssize_t>(nTaken);
}

ssize_t WriteFile(void* pCookie, const char* pch, size_t cb)
{
    auto* const pFile = static_cast<OPEN_FILE*>(pCookie);
    return static_cast<ssize_t>(pFile->pDisk->Append(pFile->name, {pch, cb}));
}

int SeekFile(void* pCookie, off64_t* pnOffset, int nOrigin)
{
    auto* const pFile = static_cast<OPEN_FILE*>(pCookie);
    const auto nSize = static_cast<off64_t>(pFile->pDisk->Files().at(pFile->name).size());
    const off64_t nFrom =
        nOrigin == SEEK_SET ? 0 : (nOrigin == SEEK_CUR ? static_cast<off64_t>(pFile->nPosition) : nSize);
    off64_t nTo = 0;
    if (__builtin_add_overflow(nFrom, *pnOffset, &nTo) || nTo < 0) {
        return -1;
    }
    pFile->nPosition = static_cast<size_t>(nTo);
    *pnOffset = nTo;
    return 0;
}

int CloseFile(void* pCookie)
{
    auto* const pFile = static_cast<OPEN_FILE*>(pCookie);
    const bool bFails = pFile->bReads && pFile->pDisk->m_bCloseFails;
    --pFile->pDisk->m_nOpen;
    delete pFile;
    return bFails ? EOF : 0;
}

} // namespace

Disk::Disk(size_t nCapacity, bool bLongPaths) : m_nRoom(nCapacity), m_bLongPaths(bLongPaths) {}

void Disk::MakeCurrent()
{
    g_pCurrent = this;
}

Disk& Disk::Current()
{
    Demand(g_pCurrent != nullptr, "a disk is there");
    return *g_pCurrent;
}

std::optional<std::wstring> Disk::Resolve(std::wstring_view path)
{
    std::wstring plain(path);
    std::ranges::transform(plain, plain.begin(), [](wchar_t ch) { return ch == L'/' ? L'\\' : LowerCase(ch); });
    std::wstring name = L"c:";
    if (plain.size() >= 2 && plain[0] >= L'a' && plain[0] <= L'z' && plain[1] == L':') {
        name = plain.substr(0, 2);
        plain.erase(0, 2);
    } else if (plain.starts_with(L"\\\\")) {
        return std::nullopt; // of another computer, or a device
    }
    AppendSegments(name, plain);
    return AcceptSegments(name) ? std::optional(name) : std::nullopt;
}

bool Disk::IsTooLong(std::wstring_view path, size_t nLimit) const
{
    return !m_bLongPaths && path.size() >= nLimit;
}

int Disk::MakeFolder(std::wstring_view path)
{
    const std::optional<std::wstring> name = Resolve(path);
    if (!name || IsTooLong(path, 248) || IsDevice(name->substr(name->find_last_of(L'\\') + 1))) {
        return ENOENT;
    }
    if (name->size() == 2) {
        return EACCES; // a drive
    }
    if (m_folders.contains(*name) || m_files.contains(*name)) {
        return EEXIST;
    }
    if (!m_folders.contains(FolderOf(*name)) || name->find(L':', 2) != std::wstring::npos) {
        return ENOENT;
    }
    m_folders.insert(*name);
    return 0;
}

std::optional<std::wstring> Disk::CreateFile(std::wstring_view path)
{
    const std::optional<std::wstring> name = Resolve(path);
    if (!name || EndsInSeparator(path) || IsTooLong(path, 260) || !m_folders.contains(FolderOf(*name))) {
        return std::nullopt;
    }
    if (IsDevice(name->substr(name->find_last_of(L'\\') + 1))) {
        return L"";
    }
    const std::wstring main = name->substr(0, name->find(L':', 2));
    if (m_folders.contains(*name)) {
        return std::nullopt;
    }
    if (main != *name && !m_folders.contains(main)) {
        m_files.try_emplace(main);
    }
    m_nRoom += m_files[*name].size();
    m_files[*name].clear();
    return name;
}

bool Disk::DeleteFile(std::wstring_view path)
{
    const std::optional<std::wstring> name = Resolve(path);
    if (!name || EndsInSeparator(path) || IsTooLong(path, 260) || !m_files.contains(*name)) {
        return false;
    }
    std::erase_if(m_files, [&](const auto& file) {
        const bool bTaken = file.first == *name || file.first.starts_with(*name + L':');
        m_nRoom += bTaken ? file.second.size() : 0;
        return bTaken;
    });
    return true;
}

size_t Disk::Append(const std::wstring& name, std::string_view bytes)
{
    if (name.empty()) {
        return bytes.size();
    }
    const size_t nTaken = std::min(bytes.size(), m_nRoom);
    m_nRoom -= nTaken;
    m_files.at(name) += bytes.substr(0, nTaken);
    return nTaken;
}

void Disk::Put(std::wstring_view path, std::string_view bytes)
{
    m_files[*Resolve(path)] = bytes;
}

int _wmkdir(PCWSTR pszPath)
{
    const int nError = Disk::Current().MakeFolder(pszPath);
    if (nError == 0) {
        return 0;
    }
    errno = nError;
    return -1;
}

extern "C" {

BOOL DeleteFileW(PCWSTR pszPath)
{
    return Disk::Current().DeleteFile(pszPath) ? TRUE : FALSE;
}

errno_t _wfopen_s(FILE** ppFile, PCWSTR pszPath, PCWSTR pszMode)
{
    Disk& disk = Disk::Current();
    const bool bReads = wcscmp(pszMode, L"rb") == 0;
    Demand(bReads || wcscmp(pszMode, L"wb") == 0, "files are read or made anew");
    const std::optional<std::wstring> name = bReads ? Disk::Resolve(pszPath) : disk.CreateFile(pszPath);
    if (!name || (bReads && !disk.Files().contains(*name))) {
        return ENOENT;
    }
    const cookie_io_functions_t functions = {ReadFile, WriteFile, bReads ? SeekFile : nullptr, CloseFile};
    *ppFile = fopencookie(new OPEN_FILE{&disk, *name, 0, bReads}, bReads ? "rb" : "wb", functions);
    Demand(*ppFile != nullptr, "the native library opens a file");
    ++disk.m_nOpen;
    if (!bReads) {
        setvbuf(*ppFile, nullptr, _IONBF, 0); // what finds no room is to fail at once
    }
    return 0;
}

errno_t _wfreopen_s(FILE** /*ppFile*/, PCWSTR /*pszPath*/, PCWSTR /*pszMode*/, FILE* /*pOld*/)
{
    Unexpected("_wfreopen_s");
}

int _wstat64(PCWSTR /*pszPath*/, struct _stat64* /*pStatus*/)
{
    Unexpected("_wstat64");
}

int64_t _ftelli64(FILE* pFile)
{
    return ftello64(pFile);
}

int _fseeki64(FILE* pFile, int64_t nOffset, int nOrigin)
{
    return fseeko64(pFile, nOffset, nOrigin);
}

// Takes the path in the system's own code page, for which the archive's UTF-8 stands here.
int _utime(const char* /*pszPath*/, struct utimbuf* /*pTimes*/)
{
    return 0;
}

} // extern "C"
