// The program from its start to its end: what is set up in which order, what each failure shows,
// and that exactly what was set up is given back. Files are real; adb, the wizard's frame and what
// concerns the whole session are answered.

#include "app/ground/KalvoApkInstaller.h"
#include "tests/kit/AnsweringAdb.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"
#include "tools/PlatformTools.h"

#include <commctrl.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <exception>

using namespace kit;

int WINAPI wWinMain(HINSTANCE hInstance, HINSTANCE, PWSTR pszCommandLine, int nShow);

namespace {

const std::wstring strTitle = L"KALVO Solvane Android Watch Installer";
const HANDLE hMutex = reinterpret_cast<HANDLE>(0x71);
const HINSTANCE hInstance = reinterpret_cast<HINSTANCE>(0x10000);

const Lines kTeardown = {"WSACleanup", "CoUninitialize", "ReleaseMutex", "CloseHandle of the mutex"};

class WinMain : public Test
{
protected:
    WinMain()
        : m_close(Quietly([this](HANDLE h) -> BOOL {
              if (h == hMutex) {
                  Note("CloseHandle of the mutex");
                  return TRUE;
              }
              return m_close.Next(h);
          })),
          m_knownFolder(Maybe([this](const GUID&, DWORD, HANDLE, PWSTR* ppszPath) -> HRESULT {
              const std::wstring str = m_folder.Path().wstring();
              *ppszPath = static_cast<PWSTR>(CoTaskMemAlloc((str.size() + 1) * sizeof(WCHAR)));
              wcscpy(*ppszPath, str.c_str());
              return S_OK;
          })),
          m_propertySheet(Maybe([this](const PROPSHEETHEADERW* pHeader) -> INT_PTR {
              m_hWizardInstance = pHeader->hInstance;
              m_bToolsThere = ToolsAreThere();
              return m_nWizardResult;
          }))
    {
        Forget();
    }

    ~WinMain() override
    {
        std::set_terminate(m_pfnTerminate);
    }

    // What a run before this one has left in the process.
    static void Forget()
    {
        CKalvoApkInstaller::GetInstance() = {};
        CPlatformTools::GetInstance() = {};
    }

    static int Run()
    {
        return wWinMain(hInstance, nullptr, nullptr, SW_SHOW);
    }

    std::filesystem::path WorkingFolder() const
    {
        return m_folder.Path() / "KALVO_ApkInstaller";
    }

    std::filesystem::path AdbExe() const
    {
        return WorkingFolder() / "platform-tools" / "adb.exe";
    }

    bool ToolsAreThere() const
    {
        return exists(AdbExe()) && exists(WorkingFolder() / "platform-tools_kalvo.zip");
    }

    void LeaveTools() const
    {
        create_directories(AdbExe().parent_path());
        WriteTextFile(AdbExe(), "old");
        WriteTextFile(AdbExe().parent_path() / "stale.txt", "old");
        WriteTextFile(WorkingFolder() / "platform-tools_other.zip", "old");
    }

    // The run ends with this message, after which this is given back, and nothing else happens.
    void ExpectToldAndEnded(const std::wstring& strText, const Lines& teardown = kTeardown)
    {
        EXPECT_EQ(Run(), 0);
        ExpectToldLast(strText, teardown);
    }

    void ExpectToldLast(const std::wstring& strText, const Lines& teardown = kTeardown)
    {
        ExpectBox(strText, strTitle);
        const auto itBox = std::ranges::find(Journal(), "box \"" + Narrow(strText) + '"');
        ASSERT_NE(itBox, Journal().end());
        EXPECT_EQ(Lines(itBox + 1, Journal().end()), teardown);
    }

    // The run does no more than this.
    void ExpectOnly(const Lines& calls)
    {
        Journal().clear();
        EXPECT_EQ(Run(), 0);
        EXPECT_EQ(Journal(), calls);
    }

    TemporaryFolder m_folder;
    INT_PTR m_nWizardResult = 1;
    HINSTANCE m_hWizardInstance = nullptr;
    bool m_bToolsThere = false;

    const std::terminate_handler m_pfnTerminate = std::get_terminate();

    // Inner replacements, those of the adb above all, come and go; nothing here must be called.
    REPLACED(SetDefaultDllDirectories) m_dllDirectories { Quietly(Returns(TRUE)) };
    REPLACED(DisableProcessWindowsGhosting) m_ghosting { Quietly([] {}) };
    // An old last error means nothing.
    REPLACED(CreateMutexW) m_createMutex { Maybe(Returns(hMutex, ERROR_ACCESS_DENIED)) };
    REPLACED(ReleaseMutex) m_release { Maybe(Returns(TRUE)) };
    REPLACED(CloseHandle) m_close;
    REPLACED(FindWindowW) m_findWindow { Maybe(Returns(HWND(nullptr))) };
    REPLACED(SetForegroundWindow) m_foreground { Maybe(Returns(TRUE)) };
    REPLACED(VerifyVersionInfoW) m_verify { Maybe(Returns(TRUE)) };
    REPLACED(CoInitializeEx) m_comStart { Maybe(Returns(HRESULT(S_OK))) };
    REPLACED(CoUninitialize) m_comEnd { Maybe([] {}) };
    REPLACED(WSAStartup) m_socketStart { Maybe(Returns(0)) };
    REPLACED(WSACleanup) m_socketEnd { Maybe(Returns(0)) };
    REPLACED(QueryFullProcessImageNameW) m_imageName { Maybe() };
    REPLACED(SHGetKnownFolderPath) m_knownFolder;
    REPLACED(SHCreateDirectoryExW) m_createFolder { Maybe() };
    REPLACED(SHFileOperationW) m_deleteFolder { Maybe() };
    REPLACED(PropertySheetW) m_propertySheet;
};

// Files are checked before the fixture's folder, adb's answers before the fixture's.
class WinMainWithAdb : public WinMain
{
protected:
    AnsweringAdb m_adb;
};

TEST_F(WinMainWithAdb, DeploysRunsTheWizardAndLeavesNothing)
{
    m_adb.Prints("");
    ExpectOnly({"CreateMutexW", "VerifyVersionInfoW", "CoInitializeEx", "WSAStartup", "QueryFullProcessImageNameW",
                "SHGetKnownFolderPath", "SHCreateDirectoryExW", "PropertySheetW", "sleep 2000", "adb kill-server",
                "SHFileOperationW", "WSACleanup", "CoUninitialize", "ReleaseMutex", "CloseHandle of the mutex"});
    EXPECT_TRUE(m_bToolsThere);
    EXPECT_EQ(m_hWizardInstance, hInstance);
    EXPECT_TRUE(exists(WorkingFolder()));
    EXPECT_TRUE(is_empty(WorkingFolder()));
    // A mutex that is owned from the start, a single-threaded apartment, sockets 2.2.
    EXPECT_EQ(m_createMutex.Arguments(), std::tuple(nullptr, TRUE, L"KALVO_APK_INSTALLER_MUTEX"));
    EXPECT_EQ(m_release.Arg<0>(), hMutex);
    EXPECT_EQ(m_comStart.Arguments(), std::tuple(nullptr, 6u));
    EXPECT_EQ(m_socketStart.Arg<0>(), 0x0202);
    EXPECT_NE(m_socketStart.Arg<1>(), nullptr);
}

TEST_F(WinMain, SetsTheProcessUpBeforeAnythingElse)
{
    const REPLACED(SetDefaultDllDirectories) dllDirectories(Returns(TRUE));
    const REPLACED(DisableProcessWindowsGhosting) ghosting([] {});
    const REPLACED(LoadStringW) load;
    const REPLACED(CreateMutexW) createMutex(Returns(HANDLE(nullptr), ERROR_ACCESS_DENIED));
    ExpectOnly(
        {"SetDefaultDllDirectories", "DisableProcessWindowsGhosting", "LoadStringW", "CreateMutexW", "FindWindowW"});
    EXPECT_EQ(dllDirectories.Arg<0>(), static_cast<DWORD>(LOAD_LIBRARY_SEARCH_SYSTEM32));
}

TEST_F(WinMain, AnExceptionThatNobodyCatchesEndsTheProcessWithoutAWord)
{
    const REPLACED(CreateMutexW) createMutex(Returns(HANDLE(nullptr), ERROR_ACCESS_DENIED));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(ExitCodeOf([] { std::get_terminate()(); }), 3u);
    EXPECT_EQ(Journal().back(), "exit 3");
}

TEST_F(WinMainWithAdb, CancellingTheWizardEndsAsFinishingDoes)
{
    const REPLACED(CoInitializeEx) startedAlready(Returns(HRESULT(S_FALSE)));
    m_adb.Prints("");
    m_nWizardResult = 0;
    EXPECT_EQ(Run(), 0);
    Lines steps = {"PropertySheetW", "adb kill-server"};
    steps.insert(steps.end(), kTeardown.begin(), kTeardown.end());
    EXPECT_EQ(JournalOf(steps), steps);
    EXPECT_TRUE(is_empty(WorkingFolder()));
}

TEST_F(WinMainWithAdb, AMissingTitleIsToldAndEveryLaterBoxHasNone)
{
    const REPLACED(LoadStringW) load(Returns(0));
    m_nWizardResult = -1;
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(load.Arg<1>(), 201u);
    ExpectBox(L"Unable to load application title", L"Error");
    ExpectBox(L"A Property Sheet error has occurred", L"");
    EXPECT_EQ(Journal()[1], "box \"Unable to load application title\"");
    EXPECT_EQ(Journal()[2], "CreateMutexW");
}

TEST_F(WinMain, ARunningInstanceIsBroughtToTheFrontWithoutAWord)
{
    const HWND hwnd = reinterpret_cast<HWND>(0x5150);
    const REPLACED(CreateMutexW) createMutex(Returns(hMutex, ERROR_ALREADY_EXISTS));
    const REPLACED(FindWindowW) findWindow(InTurn(Returns(hwnd), Returns(HWND(nullptr))));
    ExpectOnly({"CreateMutexW", "CloseHandle of the mutex", "FindWindowW", "SetForegroundWindow"});
    EXPECT_EQ(findWindow.Arguments(), std::tuple(L"(null)", strTitle));
    EXPECT_EQ(m_foreground.Arg<0>(), hwnd);
    // Without a window there is nothing to bring.
    ExpectOnly({"CreateMutexW", "CloseHandle of the mutex", "FindWindowW"});
}

TEST_F(WinMain, AMutexThatCannotBeMadeCountsAsARunningInstance)
{
    const REPLACED(FindWindowW) findWindow(Returns(reinterpret_cast<HWND>(0x5150)));
    for (const DWORD dwError : {ERROR_ACCESS_DENIED, ERROR_SUCCESS, ERROR_ALREADY_EXISTS}) {
        SCOPED_TRACE(dwError);
        const REPLACED(CreateMutexW) createMutex(Returns(HANDLE(nullptr), dwError));
        const REPLACED(CloseHandle) close(Never());
        ExpectOnly({"CreateMutexW", "FindWindowW", "SetForegroundWindow"});
    }
}

TEST_F(WinMain, AnOlderWindowsIsRefused)
{
    const REPLACED(VerifyVersionInfoW) verify(Returns(FALSE, ERROR_OLD_WIN_VERSION));
    ExpectToldAndEnded(L"This application requires Windows 10 Version 2004 (build 19041) or newer.  Please update "
                       L"Windows on you computer.",
                       {"ReleaseMutex", "CloseHandle of the mutex"});
}

// It is left all the same.
TEST_F(WinMain, AFailedStartOfComIsTold)
{
    for (const HRESULT hr : {E_OUTOFMEMORY, RPC_E_CHANGED_MODE}) {
        SCOPED_TRACE(hr);
        const REPLACED(CoInitializeEx) comStart(Returns(hr));
        ExpectToldAndEnded(L"Unable to initalize COM Library",
                           {"CoUninitialize", "ReleaseMutex", "CloseHandle of the mutex"});
        Journal().clear();
    }
}

TEST_F(WinMain, AFailedStartOfTheSocketsIsTold)
{
    const REPLACED(WSAStartup) socketStart(Returns(int(WSAVERNOTSUPPORTED)));
    ExpectToldAndEnded(L"Unable to start WinSock Library",
                       {"CoUninitialize", "ReleaseMutex", "CloseHandle of the mutex"});
}

TEST_F(WinMain, AnUnknownPathOfItsOwnIsTold)
{
    const REPLACED(QueryFullProcessImageNameW) imageName(Returns(FALSE, ERROR_ACCESS_DENIED));
    ExpectToldAndEnded(L"Unable to initalize Application Path");
    EXPECT_EQ(m_knownFolder.Calls(), 0u);
}

TEST_F(WinMain, PathsThatAreSetAlreadyAreTold)
{
    CKalvoApkInstaller::GetInstance().m_bInitialized = TRUE;
    ExpectToldAndEnded(L"Unable to initalize Application Path");
}

TEST_F(WinMain, AnUnknownUsersFolderEndsTheProcessWithoutTeardown)
{
    const REPLACED(SHGetKnownFolderPath) knownFolder(Returns(HRESULT(E_FAIL)));
    EXPECT_EQ(ExitCodeOf([] { Run(); }), 0x80004005u);
    EXPECT_EQ(TakeBox().strCaption, L"CKalvoApkInstaller::GetAppDataLocalFolderPath() > SHGetKnownFolderPath()");
    EXPECT_EQ(JournalOf(kTeardown), Lines());
    EXPECT_EQ(Journal().back(), "exit 2147500037");
}

TEST_F(WinMain, ToolsThatAreInitialisedAlreadyAreTold)
{
    CPlatformTools::GetInstance().m_bInitialized = TRUE;
    ExpectToldAndEnded(L"Unable to initalize Platform Tools");
    EXPECT_FALSE(exists(WorkingFolder()));
}

TEST_F(WinMain, AFailedDeploymentIsTold)
{
    create_directories(WorkingFolder() / "platform-tools_kalvo.zip"); // a folder where the archive goes
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(TakeBox().strCaption, L"Error");
    ExpectToldLast(L"Unable to install Platform Tools");
    EXPECT_EQ(m_propertySheet.Calls(), 0u);
}

// Whether they could be removed does not matter.
TEST_F(WinMainWithAdb, LeftOverToolsAreRemovedBeforeTheNewOnesAreWritten)
{
    m_adb.WhenItRuns([this](size_t nRun) {
        if (nRun % 2 == 0) {
            EXPECT_EQ(ReadTextFile(AdbExe()), "old");
        }
    });
    for (const char* pszFirstAnswer : {"cannot connect to daemon at tcp:5037: refused\r\n", "what?\r\n"}) {
        SCOPED_TRACE(pszFirstAnswer);
        Forget();
        Journal().clear();
        LeaveTools();
        m_adb.Prints(pszFirstAnswer).Prints("");
        EXPECT_EQ(Run(), 0);
        EXPECT_EQ(JournalOf({"adb kill-server", "SHFileOperationW", "SHCreateDirectoryExW", "PropertySheetW"}),
                  (Lines{"adb kill-server", "SHFileOperationW", "SHCreateDirectoryExW", "PropertySheetW",
                         "adb kill-server", "SHFileOperationW"}));
        EXPECT_EQ(JournalOf(kTeardown), kTeardown);
        EXPECT_TRUE(m_bToolsThere);
        EXPECT_TRUE(is_empty(WorkingFolder()));
    }
}

// A folder of tools without it is no left-over: adb does not run.
TEST_F(WinMain, LooksForLeftOversAtThePathOfAdb)
{
    create_directories(AdbExe().parent_path());
    const REPLACED(PathFileExistsW) fileExists;
    const REPLACED(CreateProcessW) run(Never());
    m_nWizardResult = -1;
    ExpectToldAndEnded(L"A Property Sheet error has occurred");
    EXPECT_EQ(fileExists.Arg<0>(), AdbExe().wstring());
}

TEST_F(WinMain, AFailedWizardIsToldAndTheToolsStay)
{
    m_nWizardResult = -1;
    ExpectToldAndEnded(L"A Property Sheet error has occurred");
    EXPECT_TRUE(ToolsAreThere());
}

TEST_F(WinMainWithAdb, AFailedRemovalIsTold)
{
    m_adb.Prints("something else\r\n");
    ExpectToldAndEnded(L"Unable to unistall Platform Tools");
    EXPECT_TRUE(is_empty(WorkingFolder())); // what could be removed is
}

TEST_F(WinMainWithAdb, ARemovalWithoutFolderIsToldOnce)
{
    m_adb.Prints("");
    const REPLACED(SHFileOperationW) deleteFolder(Returns(2));
    ExpectToldAndEnded(L"Unable to unistall Platform Tools");
}

TEST_F(WinMainWithAdb, AFolderThatCannotBeDeletedEndsTheProcessWithoutTeardown)
{
    m_adb.Prints("");
    const REPLACED(SHFileOperationW) deleteFolder(Returns(0x78));
    EXPECT_EQ(ExitCodeOf([] { Run(); }), 13u);
    EXPECT_EQ(TakeBox().strCaption, L"Win32 Error");
    EXPECT_EQ(JournalOf(kTeardown), Lines());
}

} // namespace
