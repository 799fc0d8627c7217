#include "wizard/InstallApkPage.h"

#include "adb/AdbCommands.h"
#include "app/ground/KalvoApkInstaller.h"
#include "app/ground/Owned.h"
#include "net/WinSockHelper.h"
#include "res/resource.h"
#include "wizard/AdbSteps.h"
#include "wizard/PingWatch.h"

#include <pathcch.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <cstdlib>

using Microsoft::WRL::ComPtr;

namespace {

constexpr WCHAR kCaption[] = L"ADB Install";

void ShowBox(HWND hwndPage, PCWSTR pszText)
{
    MessageBoxW(hwndPage, pszText, kCaption, MB_OK);
}

void ReportUnexpectedOutcome(HWND hwndPage, PCWSTR pszStep, ADB_EXIT_CODE nOutcome)
{
    const ADB_EXIT_CODE_ENTRY entry = DescribeAdbExitCode(nOutcome);
    CStringW szText;
    szText.Format(L"An unexpected error has occurred when %s:\n\n%s\n\n%s (%d)", pszStep, entry.pszMessage,
                  entry.pszName, static_cast<int>(nOutcome));
    ShowBox(hwndPage, szText);
}

void ReportNotConnected(HWND hwndPage)
{
    MessageBoxW(hwndPage,
                L"Unable to connect to watch.  Please try again, if that does not work, then:\n"
                L"Steps to revoke debugging authorizations:\n"
                L"1. Open the watch's Settings.\n"
                L"2. Scroll down and tap Developer options.\n"
                L"3. Scroll down and tap Revoke debugging authorizations.\n"
                L"4. Tap the blue button to confirm you are sure.\n",
                L"Install APK", MB_OK);
}

bool IsConnected(ADB_EXIT_CODE nOutcome)
{
    return nOutcome == ADB_SUCCESS || nOutcome == CONNECT_ALREADY_CONNECTED;
}

bool IsWorthAnotherConnect(ADB_EXIT_CODE nOutcome)
{
    return nOutcome == CONNECT_CANNOT_CONNECT || nOutcome == CONNECT_FAILED_TO_AUTHENTICATE;
}

bool IsWatchAway(ADB_EXIT_CODE nOutcome)
{
    return nOutcome == INSTALL_DEVICE_OFFLINE || nOutcome == INSTALL_NO_DEVICES_FOUND;
}

bool IsWorthAnotherInstall(ADB_EXIT_CODE nOutcome)
{
    return nOutcome == INSTALL_FAILED || IsWatchAway(nOutcome);
}

HRESULT SetUpDialog(IFileOpenDialog* pDialog)
{
    static constexpr COMDLG_FILTERSPEC kFileTypes[] = {{L"Android Package", L"*.apk"}, {L"All Files", L"*.*"}};

    FILEOPENDIALOGOPTIONS nOptions = 0;
    HRESULT hr = pDialog->GetOptions(&nOptions);
    if (SUCCEEDED(hr)) {
        hr = pDialog->SetOptions(nOptions | FOS_NOCHANGEDIR | FOS_FORCEFILESYSTEM | FOS_FORCESHOWHIDDEN);
    }
    if (SUCCEEDED(hr)) {
        hr = pDialog->SetFileTypes(ARRAYSIZE(kFileTypes), kFileTypes);
    }
    if (SUCCEEDED(hr)) {
        hr = pDialog->SetFileName(L"solvane.apk");
    }
    if (SUCCEEDED(hr)) {
        hr = pDialog->SetFileTypeIndex(1);
    }
    return hr;
}

} // namespace

INT_PTR CALLBACK CInstallApkPage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    static constexpr PAGE_HANDLERS kHandlers = {.nBodyId = IDC_INSTALL_APK_BODY,
                                                .nBodyStringId = IDS_INSTALL_APK_BODY,
                                                .pfnInitDialog = OnInitDialog,
                                                .pfnUpdateWizardButtons = UpdateWizardButtons,
                                                .pfnCommand = OnCommand,
                                                .pfnNext = OnNotify_PSN_WIZNEXT};
    return PageProc(kHandlers, hwndPage, nMessage, wParam, lParam);
}

BOOL CInstallApkPage::OnInitDialog(HWND hwndPage)
{
    if (const HWND hwndPath = GetDlgItem(hwndPage, IDC_APK_PATH)) {
        FindDefaultApkFile(hwndPath);
    }
    return TRUE;
}

void CInstallApkPage::OnCommand(HWND hwndPage, UINT nControlId, WPARAM /*wParam*/, UINT nNotification)
{
    if (nControlId == IDC_APK_PATH && nNotification == EN_CHANGE) {
        UpdateWizardButtons(hwndPage);
    } else if (nControlId == IDC_BROWSE && nNotification == BN_CLICKED) {
        CStringW szPath;
        if (SUCCEEDED(BrowseForApkFile(hwndPage, szPath))) {
            SetDlgItemTextW(hwndPage, IDC_APK_PATH, szPath);
            UpdateWizardButtons(hwndPage);
        }
    }
}

void CInstallApkPage::UpdateWizardButtons(HWND hwndPage)
{
    WCHAR szPath[MAX_PATH] = {};
    GetDlgItemTextW(hwndPage, IDC_APK_PATH, szPath, ARRAYSIZE(szPath));
    const DWORD dwAttributes = GetFileAttributesW(szPath);
    const bool bFile = dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    ShowWizardButtons(hwndPage, bFile ? kBackNextCancel : kBackCancel, kBackNextCancel);
}

// Puts the path of the package that lies beside the program into the edit, if there is one: the first
// that the search gives.
void CInstallApkPage::FindDefaultApkFile(HWND hwndPath)
{
    const PCWSTR pszFolder = CKalvoApkInstaller::GetInstance().m_szFolderPath;
    WCHAR szPath[MAX_PATH];
    if (FAILED(PathCchCombine(szPath, ARRAYSIZE(szPath), pszFolder, L"*.apk"))) {
        return;
    }
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(szPath, &found);
    if (hFind == INVALID_HANDLE_VALUE) {
        return;
    }
    const CFindHandle pFind(hFind);
    if (SUCCEEDED(PathCchCombine(szPath, ARRAYSIZE(szPath), pszFolder, found.cFileName))) {
        SetWindowTextW(hwndPath, szPath);
    }
}

// Lets the user choose a package; szPath then holds its path in the file system. A dialog that the
// user cancels is a failure like any other.
HRESULT CInstallApkPage::BrowseForApkFile(HWND hwndPage, CStringW& szPath)
{
    ComPtr<IFileOpenDialog> pDialog;
    HRESULT hr = CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&pDialog));
    if (SUCCEEDED(hr)) {
        hr = SetUpDialog(pDialog.Get());
    }
    if (SUCCEEDED(hr)) {
        hr = pDialog->Show(hwndPage);
    }
    ComPtr<IShellItem> pItem;
    if (SUCCEEDED(hr)) {
        hr = pDialog->GetResult(&pItem);
    }
    if (SUCCEEDED(hr)) {
        PWSTR pszPath = nullptr;
        hr = pItem->GetDisplayName(SIGDN_FILESYSPATH, &pszPath);
        szPath = CTaskText(pszPath).get();
    }
    return hr;
}

LRESULT CInstallApkPage::OnNotify_PSN_WIZNEXT(HWND hwndPage)
{
    const SOCKADDR_STORAGE& saWatch = GetWizardData(hwndPage).m_saWatchAddress;
    CStringW szAddress;
    if (!CWinSockHelper::AddressToString(reinterpret_cast<const SOCKADDR*>(&saWatch), szAddress)) {
        ShowBox(hwndPage, L"Unable to parse IP address, please report this error to KALVO.");
        return -1;
    }
    const HWND hwndStatus = GetDlgItem(hwndPage, IDC_INSTALL_APK_STATUS);
    const LRESULT nResult = PingWatch(hwndPage, reinterpret_cast<const SOCKADDR_IN*>(&saWatch), hwndStatus);
    if (nResult != 0) {
        return nResult;
    }
    if (!ConnectToWatch(hwndPage, hwndStatus, szAddress)) {
        // The server is left running on purpose, until a later step stops it.
        ReportNotConnected(hwndPage);
        return -1;
    }
    PACKAGE package;
    if (!ReadPackage(hwndPage, package)) {
        return -1;
    }
    const bool bInstalled = InstallPackage(hwndPage, hwndStatus, szAddress, package);
    const bool bStopped = StopServer(hwndPage, hwndStatus);
    return bInstalled && bStopped ? 0 : -1;
}

bool CInstallApkPage::ConnectToWatch(HWND hwndPage, HWND hwndStatus, PCWSTR pszAddress)
{
    CStringW szStatus;
    const auto Attempt = [&](int nAttempt) {
        szStatus.Format(L"Connecting to %s (attempt %d of %d)", pszAddress, nAttempt, kAdbAttempts);
        SetWindowTextW(hwndStatus, szStatus);
        return Connect(pszAddress);
    };
    const ADB_EXIT_CODE nOutcome = RunAttempts(Attempt, IsWorthAnotherConnect);

    if (IsConnected(nOutcome)) {
        szStatus.Format(L"Connected to %s", pszAddress);
    } else if (IsWorthAnotherConnect(nOutcome)) {
        szStatus.Format(L"Unable to connect to %s", pszAddress);
    } else {
        szStatus = DescribeAdbExitCode(nOutcome).pszMessage;
        ReportUnexpectedOutcome(hwndPage, L"connecting to the device", nOutcome);
    }
    SetWindowTextW(hwndStatus, szStatus);
    return IsConnected(nOutcome);
}

// The package that the edit names. False when the page has no edit.
bool CInstallApkPage::ReadPackage(HWND hwndPage, PACKAGE& package)
{
    const HWND hwndPath = GetDlgItem(hwndPage, IDC_APK_PATH);
    if (hwndPath == nullptr) {
        return false;
    }
    GetWindowTextW(hwndPath, package.szPath, ARRAYSIZE(package.szPath));
    WCHAR szFileName[_MAX_FNAME] = {};
    WCHAR szExtension[_MAX_EXT] = {};
    _wsplitpath_s(package.szPath, nullptr, 0, nullptr, 0, szFileName, ARRAYSIZE(szFileName), szExtension,
                  ARRAYSIZE(szExtension));
    package.szName.Format(L"%s%s", szFileName, szExtension);
    return true;
}

bool CInstallApkPage::InstallPackage(HWND hwndPage, HWND hwndStatus, PCWSTR pszAddress, const PACKAGE& package)
{
    CStringW szStatus;
    const auto Attempt = [&](int nAttempt) {
        szStatus.Format(L"Installing %s (attempt %d of %d)", package.szName.GetString(), nAttempt, kAdbAttempts);
        SetWindowTextW(hwndStatus, szStatus);
        return Install(pszAddress, package.szPath);
    };
    const ADB_EXIT_CODE nOutcome = RunAttempts(Attempt, IsWorthAnotherInstall);

    if (nOutcome == ADB_SUCCESS) {
        szStatus.Format(L"Installed %s", package.szName.GetString());
    } else {
        szStatus = DescribeAdbExitCode(nOutcome).pszMessage;
        if (!IsWorthAnotherInstall(nOutcome)) {
            ReportInstallOutcome(hwndPage, nOutcome, package);
        }
    }
    SetWindowTextW(hwndStatus, szStatus);
    if (IsWatchAway(nOutcome)) {
        ShowBox(hwndPage, L"Unable to install the APK, please press Next to try again");
    }
    return nOutcome == ADB_SUCCESS;
}

// Tells the user why the watch refused the package and what to do about it.
void CInstallApkPage::ReportInstallOutcome(HWND hwndPage, ADB_EXIT_CODE nOutcome, const PACKAGE& package)
{
    switch (nOutcome) {
    case INSTALL_FAILED_ALREADY_EXISTS:
    case INSTALL_FAILED_UPDATE_INCOMPATIBLE: {
        CStringW szText;
        szText.Format(L"There is a version of %s already installed on the device.\n\n"
                      L"Please manually uninstall it and then press Next.",
                      package.szName.GetString());
        ShowBox(hwndPage, szText);
        break;
    }
    case INSTALL_FAILED_INVALID_APK:
        ShowBox(hwndPage, L"The APK file is invalid. Please try downloading it again or ask KALVO for another copy.");
        break;
    case INSTALL_FAILED_INSUFFICIENT_STORAGE:
        ShowBox(hwndPage, L"There is not enough storage space on the device to install the APK.\n\n"
                          L"Remove data (e.g. pictures) or applications to free up storage space");
        break;
    case INSTALL_MORE_THAN_ONE_DEVICE:
        ShowBox(hwndPage, L"More than one Android device is attached (USB, Bluetooth, Wi-Fi) to this computer. Please "
                          L"disconnect all other Android devices.");
        break;
    default:
        ReportUnexpectedOutcome(hwndPage, L"installing the APK", nOutcome);
        break;
    }
}

// False, after a box, unless a running server stopped. That none ran counts as a failure here, and not on the pairing
// page; kept so on purpose.
bool CInstallApkPage::StopServer(HWND hwndPage, HWND hwndStatus)
{
    if (KillServer() == ADB_SUCCESS) {
        return true;
    }
    ReportServerNotStopped(hwndPage, L"CInstallApkPage::OnNotify_PSN_WIZNEXT");
    SetWindowTextW(hwndStatus, L"Unable to stop adb service");
    return false;
}
