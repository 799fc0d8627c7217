#include "tests/fuzz/platform/Disk.h"

#include "tests/fuzz/Demand.h"

#include <algorithm>
#include <sstream>

namespace {

Disk* g_pCurrent = nullptr;

std::wstring FolderOf(const std::wstring& name)
{
    return name.substr(0, name.find_last_of(L'\\'));
}

// Appends a path's segments, behind its drive, to the drive's name.
void AppendSegments(std::wstring& name, const std::wstring& path)
{
    const size_t nDrive = name.size();
    std::wistringstream segments(path);
    for (std::wstring segment; std::getline(segments, segment, L'\\');) {
        if (segment == L"..") {
            name.resize(std::max(nDrive, FolderOf(name).size()));
        } else if (!segment.empty() && segment != L".") {
            if (segment.ends_with(L'.') && !segment.ends_with(L"..")) {
                segment.pop_back();
            }
            name += L'\\' + segment;
        }
    }
}

ssize_t WriteFile(void* pFile, const char* pch, size_t cb)
{
    return g_pCurrent->Append(*static_cast<std::string*>(pFile), {pch, cb}) ? static_cast<ssize_t>(cb) : 0;
}

} // namespace

void Disk::MakeCurrent()
{
    g_pCurrent = this;
}

std::optional<std::wstring> Disk::Resolve(std::wstring path)
{
    std::ranges::transform(path, path.begin(), [](wchar_t ch) { return static_cast<wchar_t>(towlower(ch)); });
    std::ranges::replace(path, L'/', L'\\');
    std::wstring name = L"c:";
    if (path.size() >= 2 && path[0] >= L'a' && path[0] <= L'z' && path[1] == L':') {
        name = path.substr(0, 2);
        path.erase(0, 2);
    } else if (path.starts_with(L"\\\\")) {
        return std::nullopt; // of another computer, or a device
    }
    const size_t nLast = path.find_last_of(L'\\') + 1;
    if (path.substr(nLast) != L"." && path.substr(nLast) != L"..") {
        path.erase(std::max(nLast, path.find_last_not_of(L". ") + 1));
    }
    const auto isRefused = [](wchar_t ch) { return ch < L' ' || wcschr(L"<>:\"|?*", ch) != nullptr; };
    if (std::ranges::any_of(path, isRefused)) {
        return std::nullopt;
    }
    AppendSegments(name, path);
    return name;
}

bool Disk::IsFolder(const std::wstring& name) const
{
    const auto found = m_entries.find(name);
    return found != m_entries.end() && !found->second;
}

int Disk::MakeFolder(const std::wstring& path)
{
    const std::optional<std::wstring> name = Resolve(path);
    if (!name || !IsFolder(FolderOf(*name))) {
        return ENOENT;
    }
    if (name->size() == 2) {
        return EACCES; // a drive
    }
    return m_entries.try_emplace(*name).second ? 0 : EEXIST;
}

std::string* Disk::CreateFile(const std::wstring& path)
{
    const std::optional<std::wstring> name = Resolve(path);
    if (!name || !IsFolder(FolderOf(*name)) || IsFolder(*name)) {
        return nullptr;
    }
    return &m_entries[*name].emplace();
}

bool Disk::DeleteFile(const std::wstring& path)
{
    const std::optional<std::wstring> name = Resolve(path);
    return name && !IsFolder(*name) && m_entries.erase(*name) > 0;
}

bool Disk::Append(std::string& file, std::string_view bytes) const
{
    if (bytes.size() > m_nRoom - file.size()) {
        return false;
    }
    file += bytes;
    return true;
}

FILE* Disk::OpenArchive()
{
    return fmemopen(m_archive.data(), m_archive.size(), "rb");
}

int _wmkdir(PCWSTR pszPath)
{
    errno = g_pCurrent->MakeFolder(pszPath);
    return errno == 0 ? 0 : -1;
}

BOOL DeleteFileW(PCWSTR pszPath)
{
    return g_pCurrent->DeleteFile(pszPath) ? TRUE : FALSE;
}

errno_t _wfopen_s(FILE** ppFile, PCWSTR pszPath, PCWSTR pszMode)
{
    if (wcscmp(pszMode, L"rb") == 0) {
        *ppFile = g_pCurrent->OpenArchive();
    } else {
        Demand(wcscmp(pszMode, L"wb") == 0, "files are read or made anew");
        std::string* const pFile = g_pCurrent->CreateFile(pszPath);
        *ppFile = pFile == nullptr ? nullptr : fopencookie(pFile, "wb", {nullptr, WriteFile, nullptr, nullptr});
        if (*ppFile != nullptr) {
            setvbuf(*ppFile, nullptr, _IONBF, 0); // what finds no room is to fail at once
        }
    }
    return *ppFile == nullptr ? ENOENT : 0;
}

// The archive's reader never asks for these.
UNEXPECTED(errno_t _wfreopen_s(FILE**, PCWSTR, PCWSTR, FILE*))
UNEXPECTED(int _wstat64(PCWSTR, struct __stat64*))
