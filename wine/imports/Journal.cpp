#include "imports/Journal.h"

#include <windows.h>

namespace {

// Empty without the variable.
std::wstring PathIn(PCWSTR pszVariable)
{
    std::wstring szPath(MAX_PATH, L'\0');
    szPath.resize(GetEnvironmentVariableW(pszVariable, szPath.data(), MAX_PATH));
    return szPath.size() < MAX_PATH ? szPath : std::wstring();
}

} // namespace

std::string ToUtf8(std::wstring_view szText)
{
    const int nLength = static_cast<int>(szText.size());
    std::string utf8(szText.size() * 3, '\0');
    utf8.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, szText.data(), nLength, utf8.data(),
                                                        static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

void AppendToFile(PCWSTR pszVariable, std::string_view bytes)
{
    const DWORD dwError = GetLastError();
    // Opened anew each time: the bytes are in the file whatever becomes of the process.
    const HANDLE hFile = CreateFileW(PathIn(pszVariable).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile != INVALID_HANDLE_VALUE) {
        DWORD dwWritten = 0;
        WriteFile(hFile, bytes.data(), static_cast<DWORD>(bytes.size()), &dwWritten, nullptr);
        CloseHandle(hFile);
    }
    SetLastError(dwError);
}

bool HasJournal()
{
    return !PathIn(kJournalVariable).empty();
}

void WriteJournal(std::wstring_view szLine)
{
    AppendToFile(kJournalVariable, ToUtf8(szLine) + '\n');
}

std::wstring Quoted(std::wstring_view szText)
{
    std::wstring szQuoted = L"\"";
    for (const wchar_t ch : szText) {
        switch (ch) {
        case L'\n':
            szQuoted += L"\\n";
            break;
        case L'\r':
            szQuoted += L"\\r";
            break;
        case L'\t':
            szQuoted += L"\\t";
            break;
        case L'"':
        case L'\\':
            szQuoted += L'\\';
            [[fallthrough]];
        default:
            szQuoted += ch;
            break;
        }
    }
    return szQuoted + L'"';
}
