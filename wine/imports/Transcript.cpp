#include "imports/Transcript.h"

#include "imports/ImportTable.h"
#include "imports/Journal.h"
#include "imports/Utf8.h"

namespace {

decltype(CreateProcessW)* g_pfnCreateProcessW;
decltype(ReadFile)* g_pfnReadFile;

BOOL WINAPI TranscribedCreateProcessW(LPCWSTR pszApplication, LPWSTR pszCommandLine, LPSECURITY_ATTRIBUTES pProcess,
                                      LPSECURITY_ATTRIBUTES pThread, BOOL bInherit, DWORD dwFlags, LPVOID pEnvironment,
                                      LPCWSTR pszFolder, LPSTARTUPINFOW pStartup, LPPROCESS_INFORMATION pInformation)
{
    AppendToFile(kTranscriptVariable, "\n> " + ToUtf8(pszCommandLine != nullptr ? pszCommandLine : L"") + "\n");
    return g_pfnCreateProcessW(pszApplication, pszCommandLine, pProcess, pThread, bInherit, dwFlags, pEnvironment,
                               pszFolder, pStartup, pInformation);
}

BOOL WINAPI TranscribedReadFile(HANDLE hFile, LPVOID pBuffer, DWORD dwSize, LPDWORD pdwRead, LPOVERLAPPED pOverlapped)
{
    const BOOL bRead = g_pfnReadFile(hFile, pBuffer, dwSize, pdwRead, pOverlapped);
    if (bRead && pdwRead != nullptr) {
        AppendToFile(kTranscriptVariable, {static_cast<const char*>(pBuffer), *pdwRead});
    }
    return bRead;
}

} // namespace

void InstallTranscript(HMODULE hModule)
{
    if (EnvironmentText(kTranscriptVariable).empty()) {
        return;
    }
    g_pfnCreateProcessW = ReplaceImport(hModule, "CreateProcessW", TranscribedCreateProcessW);
    g_pfnReadFile = ReplaceImport(hModule, "ReadFile", TranscribedReadFile);
}
