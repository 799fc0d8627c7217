#include "check/Machine.h"

#include "check/Installer.h"
#include "check/Listener.h"
#include "launcher/Handle.h"

#include <winsock2.h>

#include <iphlpapi.h>
#include <uxtheme.h>

#include <cwchar>
#include <format>
#include <memory>

namespace {

constexpr PCWSTR kCurrentVersion = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr PCWSTR kPersonalize = LR"(SOFTWARE\Microsoft\Windows\CurrentVersion\Themes\Personalize)";

// A text, or a number in words.
std::wstring FromRegistry(HKEY hKey, PCWSTR pszKey, PCWSTR pszValue)
{
    union {
        WCHAR szText[128];
        DWORD dwNumber;
    } value = {};
    DWORD dwType = REG_NONE;
    DWORD cb = sizeof value;
    if (RegGetValueW(hKey, pszKey, pszValue, RRF_RT_REG_SZ | RRF_RT_REG_DWORD, &dwType, &value, &cb) != ERROR_SUCCESS) {
        return L"unknown";
    }
    return dwType == REG_SZ ? std::wstring(value.szText) : std::to_wstring(value.dwNumber);
}

std::wstring Language()
{
    WCHAR szName[LOCALE_NAME_MAX_LENGTH] = {};
    LCIDToLocaleName(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), szName, LOCALE_NAME_MAX_LENGTH, 0);
    return szName;
}

bool IsScreenReaderOn()
{
    BOOL bOn = FALSE;
    return SystemParametersInfoW(SPI_GETSCREENREADER, 0, &bOn, 0) && bOn;
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
    TOKEN_ELEVATION elevation = {};
    DWORD cb = 0;
    return GetTokenInformation(GetCurrentProcessToken(), TokenElevation, &elevation, sizeof elevation, &cb) &&
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

bool IsThere(PCWSTR pszMutex)
{
    return CHandle(OpenMutexW(SYNCHRONIZE, FALSE, pszMutex)) != nullptr;
}

bool IsOldWindows()
{
    constexpr unsigned long kVersion2004 = 19041;
    const std::wstring szBuild = FromRegistry(HKEY_LOCAL_MACHINE, kCurrentVersion, L"CurrentBuildNumber");
    return std::wcstoul(szBuild.c_str(), nullptr, 10) < kVersion2004;
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
    if (IsThere(kCheckMutex)) {
        return L"The check is running already.";
    }
    if (IsThere(L"KALVO_APK_INSTALLER_MUTEX")) {
        return L"The installer is running. Please close it first.";
    }
    if (IsListening(kAdbServerPort) || IsRunning(L"adb.exe")) {
        return L"adb is running. The check has to stop and start adb's server: please close all programs that use adb, "
               L"and stop its server with \"adb kill-server\".";
    }
    return {};
}
