// The page that installs the package: found beside the program or chosen by the user.
#pragma once

#include "adb/AdbExitCode.h"
#include "wizard/WizardPage.h"

class CInstallApkPage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

private:
    // The package of one run: its full path, and its file name with extension for the user.
    struct PACKAGE
    {
        WCHAR szPath[MAX_PATH] = {};
        CStringW szName;
    };

    static BOOL OnInitDialog(HWND hwndPage);
    static void OnCommand(HWND hwndPage, UINT nControlId, WPARAM wParam, UINT nNotification);
    static void UpdateWizardButtons(HWND hwndPage);
    static void FindDefaultApkFile(HWND hwndPath);
    static HRESULT BrowseForApkFile(HWND hwndPage, CStringW& szPath);

    static LRESULT OnNotify_PSN_WIZNEXT(HWND hwndPage);
    static bool ConnectToWatch(HWND hwndPage, HWND hwndStatus, PCWSTR pszAddress);
    static bool ReadPackage(HWND hwndPage, PACKAGE& package);
    static bool InstallPackage(HWND hwndPage, HWND hwndStatus, PCWSTR pszAddress, const PACKAGE& package);
    static void ReportInstallOutcome(HWND hwndPage, ADB_EXIT_CODE nOutcome, const PACKAGE& package);
    static bool StopServer(HWND hwndPage, HWND hwndStatus);
};
