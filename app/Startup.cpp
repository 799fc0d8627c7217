#include "app/Startup.h"

#include <objbase.h>

CInstanceLock::~CInstanceLock()
{
    if (m_hMutex != nullptr) {
        ReleaseMutex(m_hMutex);
        CloseHandle(m_hMutex);
    }
}

bool CInstanceLock::Acquire()
{
    m_hMutex = CreateMutexW(nullptr, TRUE, L"KALVO_APK_INSTALLER_MUTEX");
    if (m_hMutex != nullptr && GetLastError() == ERROR_ALREADY_EXISTS) {
        CloseHandle(m_hMutex);
        m_hMutex = nullptr;
    }
    return m_hMutex != nullptr;
}

CComLibrary::~CComLibrary()
{
    CoUninitialize();
}

bool CComLibrary::Start()
{
    return SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
}

CWinSockLibrary::~CWinSockLibrary()
{
    if (m_bStarted) {
        WSACleanup();
    }
}

bool CWinSockLibrary::Start()
{
    WSADATA data = {};
    m_bStarted = WSAStartup(MAKEWORD(2, 2), &data) == 0;
    return m_bStarted;
}

bool IsSupportedWindows()
{
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    version.dwMajorVersion = 10;
    version.dwMinorVersion = 0;
    version.dwBuildNumber = 19041;

    DWORDLONG dwlConditions = 0;
    dwlConditions = VerSetConditionMask(dwlConditions, VER_MAJORVERSION, VER_GREATER_EQUAL);
    dwlConditions = VerSetConditionMask(dwlConditions, VER_MINORVERSION, VER_GREATER_EQUAL);
    dwlConditions = VerSetConditionMask(dwlConditions, VER_BUILDNUMBER, VER_GREATER_EQUAL);
    return VerifyVersionInfoW(&version, VER_MINORVERSION | VER_MAJORVERSION | VER_BUILDNUMBER, dwlConditions) != FALSE;
}

void BringToFront(PCWSTR pszTitle)
{
    const HWND hwnd = FindWindowW(nullptr, pszTitle);
    if (hwnd != nullptr) {
        SetForegroundWindow(hwnd);
    }
}
