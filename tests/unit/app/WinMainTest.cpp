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
        : m_close([this](HANDLE h) -> BOOL {
              if (h == hMutex) {
                  Note("CloseHandle of the mutex");
                  return TRUE;
              }
              return m_close.Next(h);
          }),
          m_knownFolder([this](const GUID&, DWORD, HANDLE, PWSTR* ppszPath) -> HRESULT {
              const std::wstring str = m_folder.Path().wstring();
              *ppszPath = static_cast<PWSTR>(CoTaskMemAlloc((str.size() + 1) * sizeof(WCHAR)));
              wcscpy(*ppszPath, str.c_str());
              return S_OK;
          }),
          m_propertySheet([this](const PROPSHEETHEADERW* pHeader) -> INT_PTR {
              m_hWizardInstance = pHeader->hInstance;
              m_bToolsThere = ToolsAreThere();
              return m_nWizardResult;
          })
    {
        CKalvoApkInstaller::GetInstance() = {};
        CPlatformTools::GetInstance() = {};
        // Inner replacements, those of the adb above all, come and go; nothing here must be called.
        m_dllDirectories.Optional().Unnoted();
        m_ghosting.Optional().Unnoted();
        m_createMutex.Optional();
        m_release.Optional();
        m_close.Optional().Unnoted();
        m_findWindow.Optional();
        m_foreground.Optional();
        m_verify.Optional();
        m_comStart.Optional();
        m_comEnd.Optional();
        m_socketStart.Optional();
        m_socketEnd.Optional();
        m_imageName.Optional();
        m_knownFolder.Optional();
        m_createFolder.Optional();
        m_deleteFolder.Optional();
        m_propertySheet.Optional();
    }

    ~WinMain() override
    {
        std::set_terminate(m_pfnTerminate);
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

    // The journal from a line on: what came after a box.
    static Lines From(const std::string& strLine)
    {
        const auto it = std::ranges::find(Journal(), strLine);
        return {it, Journal().end()};
    }

    // After a message of start-up proper everything is given back, and nothing else happens.
    void ExpectErrorExit(const std::wstring& strText)
    {
        ExpectBox(strText, strTitle);
        Lines expected = kTeardown;
        expected.insert(expected.begin(), "box \"" + Narrow(strText) + '"');
        EXPECT_EQ(From(expected.front()), expected);
    }

    TemporaryFolder m_folder;
    INT_PTR m_nWizardResult = 1;
    HINSTANCE m_hWizardInstance = nullptr;
    bool m_bToolsThere = false;

    const std::terminate_handler m_pfnTerminate = std::get_terminate();

    REPLACED(SetDefaultDllDirectories) m_dllDirectories { Returns(TRUE) };
    REPLACED(DisableProcessWindowsGhosting) m_ghosting { [] {} };
    REPLACED(CreateMutexW) m_createMutex { Returns(hMutex, ERROR_SUCCESS) };
    REPLACED(ReleaseMutex) m_release { Returns(TRUE) };
    REPLACED(CloseHandle) m_close;
    REPLACED(FindWindowW) m_findWindow { Returns(HWND(nullptr)) };
    REPLACED(SetForegroundWindow) m_foreground { Returns(TRUE) };
    REPLACED(VerifyVersionInfoW) m_verify { Returns(TRUE) };
    REPLACED(CoInitializeEx) m_comStart { Returns(HRESULT(S_OK)) };
    REPLACED(CoUninitialize) m_comEnd { [] {} };
    REPLACED(WSAStartup) m_socketStart { Returns(0) };
    REPLACED(WSACleanup) m_socketEnd { Returns(0) };
    REPLACED(QueryFullProcessImageNameW) m_imageName;
    REPLACED(SHGetKnownFolderPath) m_knownFolder;
    REPLACED(SHCreateDirectoryExW) m_createFolder;
    REPLACED(SHFileOperationW) m_deleteFolder;
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
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Journal(),
              (Lines{"CreateMutexW", "VerifyVersionInfoW", "CoInitializeEx", "WSAStartup", "QueryFullProcessImageNameW",
                     "SHGetKnownFolderPath", "SHCreateDirectoryExW", "PropertySheetW", "sleep 2000", "adb kill-server",
                     "SHFileOperationW", "WSACleanup", "CoUninitialize", "ReleaseMutex", "CloseHandle of the mutex"}));
    EXPECT_TRUE(m_bToolsThere);
    EXPECT_EQ(m_hWizardInstance, hInstance);
    EXPECT_TRUE(exists(WorkingFolder()));
    EXPECT_TRUE(is_empty(WorkingFolder()));
    EXPECT_EQ(m_release.Arg<0>(), hMutex);
}

TEST_F(WinMain, SetsTheProcessUpBeforeAnythingElse)
{
    const REPLACED(SetDefaultDllDirectories) dllDirectories(Returns(TRUE));
    const REPLACED(DisableProcessWindowsGhosting) ghosting([] {});
    const REPLACED(LoadStringW) load;
    const REPLACED(CreateMutexW) createMutex(Returns(HANDLE(nullptr), ERROR_ACCESS_DENIED));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Journal(), (Lines{"SetDefaultDllDirectories", "DisableProcessWindowsGhosting", "LoadStringW",
                                "CreateMutexW", "FindWindowW"}));
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
    m_adb.Prints("");
    m_nWizardResult = 0;
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(JournalOf({"PropertySheetW", "adb kill-server", "WSACleanup", "CoUninitialize", "ReleaseMutex",
                         "CloseHandle of the mutex"}),
              (Lines{"PropertySheetW", "adb kill-server", "WSACleanup", "CoUninitialize", "ReleaseMutex",
                     "CloseHandle of the mutex"}));
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
    const REPLACED(FindWindowW) findWindow(Returns(hwnd));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "CloseHandle of the mutex", "FindWindowW", "SetForegroundWindow"}));
    EXPECT_EQ(findWindow.Arg<0>(), L"(null)");
    EXPECT_EQ(findWindow.Arg<1>(), strTitle);
    EXPECT_EQ(m_foreground.Arg<0>(), hwnd);
}

TEST_F(WinMain, ARunningInstanceWithoutWindowIsLeftAlone)
{
    const REPLACED(CreateMutexW) createMutex(Returns(hMutex, ERROR_ALREADY_EXISTS));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "CloseHandle of the mutex", "FindWindowW"}));
}

TEST_F(WinMain, AMutexThatCannotBeMadeCountsAsARunningInstance)
{
    const REPLACED(CreateMutexW) createMutex(Returns(HANDLE(nullptr), ERROR_ACCESS_DENIED));
    const REPLACED(FindWindowW) findWindow(Returns(reinterpret_cast<HWND>(0x5150)));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "FindWindowW", "SetForegroundWindow"}));
}

TEST_F(WinMain, AnOlderWindowsIsRefused)
{
    const REPLACED(VerifyVersionInfoW) verify(Returns(FALSE, ERROR_OLD_WIN_VERSION));
    EXPECT_EQ(Run(), 0);
    const std::wstring strText =
        L"This application requires Windows 10 Version 2004 (build 19041) or newer.  Please update Windows on you "
        L"computer.";
    ExpectBox(strText, strTitle);
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "VerifyVersionInfoW", "box \"" + Narrow(strText) + '"', "ReleaseMutex",
                                "CloseHandle of the mutex"}));
}

TEST_F(WinMain, AFailedStartOfComIsTold)
{
    const REPLACED(CoInitializeEx) comStart(Returns(HRESULT(E_OUTOFMEMORY)));
    EXPECT_EQ(Run(), 0);
    ExpectBox(L"Unable to initalize COM Library", strTitle);
    EXPECT_EQ(Journal(),
              (Lines{"CreateMutexW", "VerifyVersionInfoW", "CoInitializeEx", "box \"Unable to initalize COM Library\"",
                     "CoUninitialize", "ReleaseMutex", "CloseHandle of the mutex"}));
}

TEST_F(WinMain, AFailedStartOfTheSocketsIsTold)
{
    const REPLACED(WSAStartup) socketStart(Returns(int(WSAVERNOTSUPPORTED)));
    EXPECT_EQ(Run(), 0);
    ExpectBox(L"Unable to start WinSock Library", strTitle);
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "VerifyVersionInfoW", "CoInitializeEx", "WSAStartup",
                                "box \"Unable to start WinSock Library\"", "CoUninitialize", "ReleaseMutex",
                                "CloseHandle of the mutex"}));
}

TEST_F(WinMain, AnUnknownPathOfItsOwnIsTold)
{
    const REPLACED(QueryFullProcessImageNameW) imageName(Returns(FALSE, ERROR_ACCESS_DENIED));
    EXPECT_EQ(Run(), 0);
    ExpectErrorExit(L"Unable to initalize Application Path");
    EXPECT_EQ(m_knownFolder.Calls(), 0u);
}

TEST_F(WinMain, PathsThatAreSetAlreadyAreTold)
{
    CKalvoApkInstaller::GetInstance().m_bInitialized = TRUE;
    EXPECT_EQ(Run(), 0);
    ExpectErrorExit(L"Unable to initalize Application Path");
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
    EXPECT_EQ(Run(), 0);
    ExpectErrorExit(L"Unable to initalize Platform Tools");
    EXPECT_FALSE(exists(WorkingFolder()));
}

TEST_F(WinMain, AFailedDeploymentIsTold)
{
    create_directories(WorkingFolder() / "platform-tools_kalvo.zip"); // a folder where the archive goes
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(TakeBox().strCaption, L"Error");
    ExpectErrorExit(L"Unable to install Platform Tools");
    EXPECT_EQ(m_propertySheet.Calls(), 0u);
}

TEST_F(WinMainWithAdb, LeftOverToolsAreRemovedBeforeTheNewOnesAreWritten)
{
    create_directories(AdbExe().parent_path());
    WriteTextFile(AdbExe(), "old");
    WriteTextFile(AdbExe().parent_path() / "stale.txt", "old");
    WriteTextFile(WorkingFolder() / "platform-tools_other.zip", "old");
    m_adb.Prints("cannot connect to daemon at tcp:5037: refused\r\n").Prints("");
    m_adb.WhenItRuns([this](size_t nRun) {
        if (nRun == 0) {
            EXPECT_EQ(ReadTextFile(AdbExe()), "old");
        }
    });
    EXPECT_EQ(Run(), 0);
    const Lines steps = {"adb kill-server", "SHFileOperationW", "SHCreateDirectoryExW", "PropertySheetW"};
    EXPECT_EQ(JournalOf(steps), (Lines{"adb kill-server", "SHFileOperationW", "SHCreateDirectoryExW", "PropertySheetW",
                                       "adb kill-server", "SHFileOperationW"}));
    EXPECT_TRUE(m_bToolsThere);
    EXPECT_TRUE(is_empty(WorkingFolder()));
}

TEST_F(WinMainWithAdb, WhetherLeftOverToolsCouldBeRemovedDoesNotMatter)
{
    create_directories(AdbExe().parent_path());
    WriteTextFile(AdbExe(), "old");
    m_adb.Prints("what?\r\n").Prints("");
    EXPECT_EQ(Run(), 0);
    EXPECT_TRUE(m_bToolsThere);
    EXPECT_EQ(JournalOf(kTeardown), kTeardown);
}

TEST_F(WinMain, AFolderOfToolsWithoutAdbIsNoLeftOver)
{
    create_directories(AdbExe().parent_path());
    const REPLACED(PropertySheetW) propertySheet(Returns(INT_PTR(-1)));
    EXPECT_EQ(Run(), 0); // without any run of adb
    TakeBox();
    EXPECT_TRUE(ToolsAreThere());
}

TEST_F(WinMain, LooksForLeftOversAtThePathOfAdb)
{
    const REPLACED(PathFileExistsW) fileExists(Returns(FALSE));
    m_nWizardResult = -1;
    EXPECT_EQ(Run(), 0);
    TakeBox();
    EXPECT_EQ(fileExists.Arg<0>(), AdbExe().wstring());
}

TEST_F(WinMain, AFailedWizardIsToldAndTheToolsStay)
{
    m_nWizardResult = -1;
    EXPECT_EQ(Run(), 0);
    ExpectErrorExit(L"A Property Sheet error has occurred");
    EXPECT_TRUE(ToolsAreThere());
}

TEST_F(WinMainWithAdb, AFailedRemovalIsTold)
{
    m_adb.Prints("something else\r\n");
    EXPECT_EQ(Run(), 0);
    ExpectErrorExit(L"Unable to unistall Platform Tools");
    EXPECT_TRUE(is_empty(WorkingFolder())); // what could be removed is
}

TEST_F(WinMainWithAdb, ARemovalWithoutFolderIsToldOnce)
{
    m_adb.Prints("");
    const REPLACED(SHFileOperationW) deleteFolder(Returns(2));
    EXPECT_EQ(Run(), 0);
    ExpectErrorExit(L"Unable to unistall Platform Tools");
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
