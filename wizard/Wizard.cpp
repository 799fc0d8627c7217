#include "wizard/Wizard.h"

#include "res/resource.h"
#include "wizard/ApkInstalledPage.h"
#include "wizard/InstallApkPage.h"
#include "wizard/InstructionPages.h"
#include "wizard/PairDevicePage.h"
#include "wizard/WelcomePage.h"
#include "wizard/WirelessDebuggingOnPage.h"
#include "wizard/WizardPage.h"

namespace {

struct PAGE
{
    UINT nDialogId;
    DLGPROC pfnDlgProc;
    UINT nHeaderTitleId;
};

// The order in which the user walks them; it is fixed.
constexpr PAGE kPages[] = {
    {IDD_WELCOME, CWelcomePage::DialogProc, IDS_WELCOME_TITLE},
    {IDD_CONNECT_WIFI, CConnectWiFiPage::DialogProc, IDS_CONNECT_WIFI_TITLE},
    {IDD_DEVELOPER_OPTIONS_ON, CDeveloperOptionsOnPage::DialogProc, IDS_DEVELOPER_OPTIONS_ON_TITLE},
    {IDD_STAY_AWAKE_ON, CStayAwakeOnPage::DialogProc, IDS_STAY_AWAKE_ON_TITLE},
    {IDD_WIRELESS_DEBUGGING_ON, CWirelessDebuggingOnPage::DialogProc, IDS_WIRELESS_DEBUGGING_ON_TITLE},
    {IDD_PAIR_DEVICE, CPairDevicePage::DialogProc, IDS_PAIR_DEVICE_TITLE},
    {IDD_INSTALL_APK, CInstallApkPage::DialogProc, IDS_INSTALL_APK_TITLE},
    {IDD_APK_INSTALLED, CApkInstalledPage::DialogProc, IDS_APK_INSTALLED_TITLE},
    {IDD_STAY_AWAKE_OFF, CStayAwakeOffPage::DialogProc, IDS_STAY_AWAKE_OFF_TITLE},
    // Its title reads "Turn on Wireless debugging" although the page turns it off; kept so on purpose.
    {IDD_WIRELESS_DEBUGGING_OFF, CWirelessDebuggingOffPage::DialogProc, IDS_WIRELESS_DEBUGGING_OFF_TITLE},
    {IDD_REVOKE_AUTHORIZATIONS, CRevokeAuthorizationsPage::DialogProc, IDS_REVOKE_AUTHORIZATIONS_TITLE},
    {IDD_DEVELOPER_OPTIONS_OFF, CDeveloperOptionsOffPage::DialogProc, IDS_DEVELOPER_OPTIONS_OFF_TITLE},
    {IDD_DISCONNECT_WIFI, CDisconnectWiFiPage::DialogProc, IDS_DISCONNECT_WIFI_TITLE},
    {IDD_FINISHED, CFinishedPage::DialogProc, IDS_FINISHED_TITLE},
};

} // namespace

INT_PTR RunWizard(HINSTANCE hInstance, CWizardData& wizardData)
{
    PROPSHEETPAGEW pages[ARRAYSIZE(kPages)] = {};
    for (size_t n = 0; n < ARRAYSIZE(kPages); ++n) {
        PROPSHEETPAGEW& page = pages[n];
        page.dwSize = sizeof(page);
        page.dwFlags = PSP_USEHEADERTITLE;
        page.hInstance = hInstance;
        page.pszTemplate = MAKEINTRESOURCEW(kPages[n].nDialogId);
        page.pfnDlgProc = kPages[n].pfnDlgProc;
        page.lParam = reinterpret_cast<LPARAM>(&wizardData);
        page.pszHeaderTitle = MAKEINTRESOURCEW(kPages[n].nHeaderTitleId);
    }

    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_AEROWIZARD | PSH_PROPSHEETPAGE | PSH_USEICONID;
    header.hwndParent = GetDesktopWindow();
    header.hInstance = hInstance;
    header.pszIcon = MAKEINTRESOURCEW(IDI_APPLICATION_ICON);
    header.pszCaption = MAKEINTRESOURCEW(IDS_APPLICATION_TITLE);
    header.nPages = ARRAYSIZE(pages);
    header.nStartPage = 0;
    header.ppsp = pages;
    return PropertySheetW(&header);
}
