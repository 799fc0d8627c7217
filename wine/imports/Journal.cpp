#include "imports/Journal.h"

#include "imports/Utf8.h"

#include <windows.h>

std::wstring EnvironmentText(PCWSTR pszVariable)
{
    std::wstring szText(GetEnvironmentVariableW(pszVariable, nullptr, 0), L'\0');
    szText.resize(GetEnvironmentVariableW(pszVariable, szText.data(), static_cast<DWORD>(szText.size())));
    return szText;
}

void AppendToFile(PCWSTR pszVariable, std::string_view bytes)
{
    const DWORD dwError = GetLastError();
    // Opened anew each time: the bytes are in the file whatever becomes of the process.
    const HANDLE hFile =
        CreateFileW(EnvironmentText(pszVariable).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile != INVALID_HANDLE_VALUE) {
        DWORD dwWritten = 0;
        WriteFile(hFile, bytes.data(), static_cast<DWORD>(bytes.size()), &dwWritten, nullptr);
        CloseHandle(hFile);
    }
    SetLastError(dwError);
}

bool HasJournal()
{
    return !EnvironmentText(kJournalVariable).empty();
}

void WriteJournal(std::wstring_view szLine)
{
    AppendToFile(kJournalVariable, ToUtf8(szLine) + '\n');
}

std::wstring QuotedOnOneLine(std::wstring_view szText)
{
    constexpr std::wstring_view kSpecial = L"\n\r\t\"\\";
    std::wstring szQuoted = L"\"";
    for (const wchar_t ch : szText) {
        const size_t nSpecial = kSpecial.find(ch);
        if (nSpecial == std::wstring_view::npos) {
            szQuoted += ch;
        } else {
            szQuoted += {L'\\', L"nrt\"\\"[nSpecial]};
        }
    }
    return szQuoted + L'"';
}
