#include "check/Machine.h"

#include "check/Installer.h"
#include "check/Listener.h"
#include "launcher/Handle.h"

#include <winsock2.h>

#include <iphlpapi.h>
#include <uxtheme.h>

#include <format>
#include <memory>

namespace {

// A text, or a number in words.
std::wstring FromRegistry(HKEY hKey, PCWSTR pszKey, PCWSTR pszValue)
{
    WCHAR szText[128] = {};
    DWORD cb = sizeof szText;
    if (RegGetValueW(hKey, pszKey, pszValue, RRF_RT_REG_SZ, nullptr, szText, &cb) == ERROR_SUCCESS) {
        return szText;
    }
    DWORD dwValue = 0;
    cb = sizeof dwValue;
    const bool bNumber =
        RegGetValueW(hKey, pszKey, pszValue, RRF_RT_REG_DWORD, nullptr, &dwValue, &cb) == ERROR_SUCCESS;
    return bNumber ? std::to_wstring(dwValue) : L"unknown";
}

constexpr PCWSTR kCurrentVersion = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr PCWSTR kPersonalize = LR"(SOFTWARE\Microsoft\Windows\CurrentVersion\Themes\Personalize)";

std::wstring Language()
{
    WCHAR szName[LOCALE_NAME_MAX_LENGTH] = {};
    LCIDToLocaleName(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), szName, LOCALE_NAME_MAX_LENGTH, 0);
    return szName;
}

bool IsScreenReaderOn()
{
    BOOL bOn = FALSE;
    SystemParametersInfoW(SPI_GETSCREENREADER, 0, &bOn, 0);
    return bOn != FALSE;
}

PCWSTR OnOrOff(bool bOn)
{
    return bOn ? L"on" : L"off";
}

std::wstring NumberOfAdapters()
{
    ULONG cb = 0;
    GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, nullptr, &cb);
    const auto buffer = std::make_unique<std::byte[]>(cb);
    auto* pAdapter = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(buffer.get());
    int n = 0;
    if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, pAdapter, &cb) != NO_ERROR) {
        return L"unknown";
    }
    for (; pAdapter != nullptr; pAdapter = pAdapter->Next) {
        n += pAdapter->IfType != IF_TYPE_SOFTWARE_LOOPBACK && pAdapter->OperStatus == IfOperStatusUp ? 1 : 0;
    }
    return std::to_wstring(n);
}

bool IsElevated()
{
    HANDLE hToken = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &hToken)) {
        return false;
    }
    const CHandle token(hToken);
    TOKEN_ELEVATION elevation = {};
    DWORD cb = sizeof elevation;
    return GetTokenInformation(hToken, TokenElevation, &elevation, sizeof elevation, &cb) &&
           elevation.TokenIsElevated != 0;
}

bool HasScreen()
{
    const HDESK hDesktop = OpenInputDesktop(0, FALSE, GENERIC_READ);
    if (hDesktop != nullptr) {
        CloseDesktop(hDesktop);
    }
    return hDesktop != nullptr && GetSystemMetrics(SM_CMONITORS) > 0;
}

bool IsInstallerRunning()
{
    const CHandle hMutex(OpenMutexW(SYNCHRONIZE, FALSE, L"KALVO_APK_INSTALLER_MUTEX"));
    return hMutex != nullptr;
}

bool IsOldWindows()
{
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    version.dwMajorVersion = 10;
    version.dwBuildNumber = 19041;
    const DWORDLONG dwlMask = VerSetConditionMask(VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL),
                                                  VER_BUILDNUMBER, VER_GREATER_EQUAL);
    return !VerifyVersionInfoW(&version, VER_MAJORVERSION | VER_BUILDNUMBER, dwlMask);
}

} // namespace

std::vector<std::pair<std::wstring, std::wstring>> DescribeMachine()
{
    return {
        {L"Windows", FromRegistry(HKEY_LOCAL_MACHINE, kCurrentVersion, L"ProductName")},
        {L"release", FromRegistry(HKEY_LOCAL_MACHINE, kCurrentVersion, L"DisplayVersion")},
        {L"build", FromRegistry(HKEY_LOCAL_MACHINE, kCurrentVersion, L"CurrentBuildNumber")},
        {L"update", FromRegistry(HKEY_LOCAL_MACHINE, kCurrentVersion, L"UBR")},
        {L"language", Language()},
        {L"code page", std::to_wstring(GetACP())},
        {L"screen", std::format(L"{} x {}", GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN))},
        {L"resolution", std::format(L"{} dots per inch", GetDpiForSystem())},
        {L"monitors", std::to_wstring(GetSystemMetrics(SM_CMONITORS))},
        {L"visual styles", OnOrOff(IsThemeActive() != FALSE)},
        {L"programs in light colors", FromRegistry(HKEY_CURRENT_USER, kPersonalize, L"AppsUseLightTheme")},
        {L"high contrast", OnOrOff(IsHighContrast())},
        {L"screen reader", OnOrOff(IsScreenReaderOn())},
        {L"remote session", GetSystemMetrics(SM_REMOTESESSION) ? L"yes" : L"no"},
        {L"network adapters in use", NumberOfAdapters()},
    };
}

bool IsHighContrast()
{
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0);
    return (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

std::wstring ReasonToRefuse()
{
    if (IsOldWindows()) {
        return L"This Windows is older than Windows 10 version 2004, the oldest that the installer is made for.";
    }
    if (!HasScreen()) {
        return L"There is no screen to look at: the session is locked or disconnected.";
    }
    if (IsElevated()) {
        return L"The check was started with the rights of an administrator. Please start it without: users of the "
               L"installer have none.";
    }
    if (IsInstallerRunning()) {
        return L"The installer is running. Please close it first.";
    }
    if (IsListening(kAdbServerPort) || IsRunning(L"adb.exe")) {
        return L"adb is running. The check has to stop and start adb's server: please close all programs that use adb, "
               L"and stop its server with \"adb kill-server\".";
    }
    return {};
}
