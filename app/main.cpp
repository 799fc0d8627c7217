// The program's spine: start-up, the wizard, and everything away again.

#include "app/Startup.h"
#include "app/ground/KalvoApkInstaller.h"
#include "app/ground/Platform.h"
#include "res/resource.h"
#include "tools/PlatformTools.h"
#include "wizard/Wizard.h"

#include <shlwapi.h>

#include <exception>

namespace {

// The exit code of a run that an exception ends, which is the C runtime's own for that.
constexpr UINT kUncaught = 3;

// To be called before anything else. What the process may load and show, whoever calls for it.
void SetUpProcess()
{
    // The load configuration speaks for the libraries that this program links; parts of the system load more by
    // their names later on.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    // The C runtime would show a box of its own.
    std::set_terminate([] { ExitProcess(kUncaught); });
    // A page that waits for adb stays as it is: its status line tells what it waits for.
    DisableProcessWindowsGhosting();
}

// Deploys the tools, runs the wizard and removes the tools. Returns what went wrong, or null.
PCWSTR RunInstaller(HINSTANCE hInstance)
{
    CKalvoApkInstaller& installer = CKalvoApkInstaller::GetInstance();
    if (!installer.Initialize()) {
        return L"Unable to initalize Application Path";
    }

    CPlatformTools& tools = CPlatformTools::GetInstance();
    if (!tools.Initialize(installer.m_szAppDataFolderPath)) {
        return L"Unable to initalize Platform Tools";
    }
    if (PathFileExistsW(tools.m_szAdbExePath)) {
        // Left by an earlier run. A folder that cannot be deleted ends the process here; what else fails is not looked
        // at, on purpose.
        tools.Uninstall();
    }
    if (!tools.Install()) {
        return L"Unable to install Platform Tools";
    }

    CWizardData wizardData;
    if (RunWizard(hInstance, wizardData) == -1) {
        return L"A Property Sheet error has occurred";
    }

    if (!tools.Uninstall()) {
        return L"Unable to unistall Platform Tools";
    }
    return nullptr;
}

} // namespace

int WINAPI wWinMain(_In_ HINSTANCE hInstance, _In_opt_ HINSTANCE /*hPrevious*/, _In_ PWSTR /*pszCommandLine*/,
                    _In_ int /*nShow*/)
{
    SetUpProcess();
    CStringW szTitle;
    if (!szTitle.LoadStringW(IDS_APPLICATION_TITLE)) {
        MessageBoxW(nullptr, L"Unable to load application title", L"Error", MB_OK);
    }
    const auto Show = [&szTitle](PCWSTR pszMessage) { MessageBoxW(nullptr, pszMessage, szTitle, MB_OK); };

    CInstanceLock lock;
    if (!lock.Acquire()) {
        BringToFront(szTitle);
        return 0;
    }
    if (!IsSupportedWindows()) {
        Show(L"This application requires Windows 10 Version 2004 (build 19041) or newer.  Please update Windows on you "
             L"computer.");
        return 0;
    }
    CComLibrary com;
    if (!com.Start()) {
        Show(L"Unable to initalize COM Library");
        return 0;
    }
    CWinSockLibrary winSock;
    if (!winSock.Start()) {
        Show(L"Unable to start WinSock Library");
        return 0;
    }
    if (const PCWSTR pszFailure = RunInstaller(hInstance)) {
        Show(pszFailure);
    }
    return 0;
}
