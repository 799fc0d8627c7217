// Putting the tools on disk and removing them again: once for real, and every call that can fail.

#include "tools/PlatformTools.h"

#include "adb/AdbCommands.h"
#include "tests/kit/AnsweringAdb.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"
#include "tests/unit/tools/StoredZip.h"

#include <pathcch.h>
#include <shellapi.h>
#include <shlobj.h>

#include <format>

using namespace kit;

namespace {

// The fields, in order.
static_assert(offsetof(CPlatformTools, m_bInitialized) == 0);
static_assert(offsetof(CPlatformTools, m_szAdbExePath) == 4);
static_assert(offsetof(CPlatformTools, m_szRootFolderPath) == 4 + 520);
static_assert(offsetof(CPlatformTools, m_szPlatformToolsFolderPath) == 4 + 2 * 520);
static_assert(offsetof(CPlatformTools, m_szZipFilePath) == 4 + 3 * 520);
static_assert(sizeof(CPlatformTools) == 4 + 4 * 520);

class PlatformTools : public Test
{
protected:
    PlatformTools()
    {
        Tools() = {};
    }

    static CPlatformTools& Tools()
    {
        return CPlatformTools::GetInstance();
    }

    // Not there at first.
    std::filesystem::path WorkingFolder() const
    {
        return m_folder.Path() / "Local" / "KALVO_ApkInstaller";
    }

    std::filesystem::path ToolsFolder() const
    {
        return WorkingFolder() / "platform-tools";
    }

    std::filesystem::path Archive() const
    {
        return WorkingFolder() / "platform-tools_kalvo.zip";
    }

    // The process ends with this code, after a report of this call.
    void ExpectEnd(void (*pfnBody)(), DWORD dwCode, const std::wstring& strCall, bool bWin32Error)
    {
        SCOPED_TRACE(Narrow(strCall));
        EXPECT_EQ(ExitCodeOf(pfnBody), dwCode);
        const std::wstring strCode = bWin32Error ? std::format(L"0x{:08X}", dwCode) : std::to_wstring(dwCode);
        ExpectBox(L"CPlatformTools::" + strCall + L" failed with error " + strCode + L": " + SystemDescription(dwCode) +
                      (bWin32Error ? L"\r\n" : L""),
                  bWin32Error ? L"Win32 Error" : L"Error");
    }

    TemporaryFolder m_folder;
};

using PlatformToolsPaths = PlatformTools;

// The runtime declares this in several forms, so the form that is imported is spelled out.
using Copy = Replaced<"wcsncpy_s", errno_t (*)(PWSTR, size_t, PCWSTR, size_t)>;

TEST_F(PlatformToolsPaths, LieBelowTheWorkingFolder)
{
    const Copy copy;
    const REPLACED(PathCchCombine) combine;
    EXPECT_TRUE(Tools().Initialize(L"C:\\Users\\kim\\Local\\KALVO_ApkInstaller"));
    EXPECT_EQ(Tools().m_bInitialized, 1);
    EXPECT_STREQ(Tools().m_szRootFolderPath, L"C:\\Users\\kim\\Local\\KALVO_ApkInstaller");
    EXPECT_STREQ(Tools().m_szZipFilePath, L"C:\\Users\\kim\\Local\\KALVO_ApkInstaller\\platform-tools_kalvo.zip");
    EXPECT_STREQ(Tools().m_szPlatformToolsFolderPath, L"C:\\Users\\kim\\Local\\KALVO_ApkInstaller\\platform-tools");
    EXPECT_STREQ(Tools().m_szAdbExePath, L"C:\\Users\\kim\\Local\\KALVO_ApkInstaller\\platform-tools\\adb.exe");

    EXPECT_EQ(combine.Calls(), 3u);
    EXPECT_EQ(combine.Arguments(0), std::tuple(Tools().m_szZipFilePath, 260u, kAny, kAny));
    EXPECT_EQ(combine.Arguments(1), std::tuple(Tools().m_szPlatformToolsFolderPath, 260u, kAny, kAny));
    EXPECT_EQ(combine.Arguments(2), std::tuple(Tools().m_szAdbExePath, 260u, kAny, kAny));
    EXPECT_EQ(copy.Arguments(), std::tuple(Tools().m_szRootFolderPath, 260u, kAny, kAny));
}

TEST_F(PlatformToolsPaths, ASecondInitialisationFails)
{
    EXPECT_TRUE(Tools().Initialize(L"C:\\first"));
    EXPECT_FALSE(Tools().Initialize(L"C:\\second"));
    EXPECT_STREQ(Tools().m_szRootFolderPath, L"C:\\first");
}

TEST_F(PlatformToolsPaths, EachThatCannotBeCombinedFailsTheInitialisation)
{
    for (size_t nFailing = 1; nFailing <= 3; ++nFailing) {
        REPLACED(PathCchCombine)
        combine(
            [&](auto... args) { return combine.Calls() == nFailing ? HRESULT(0x8007007A) : combine.Next(args...); });
        EXPECT_FALSE(Tools().Initialize(L"C:\\w")) << nFailing;
        EXPECT_EQ(combine.Calls(), nFailing);
    }
    EXPECT_EQ(Tools().m_bInitialized, 0);
}

// "platform-tools_kalvo.zip" is the longest addition: 24 characters and a backslash.
TEST_F(PlatformToolsPaths, MayFillTheirRoomAndNoMore)
{
    for (const size_t nLength : {232u, 255u, 256u, 257u, 300u}) {
        EXPECT_FALSE(Tools().Initialize((L"C:\\" + std::wstring(nLength, L'w')).c_str())) << nLength;
        EXPECT_EQ(Tools().m_bInitialized, 0);
    }
    EXPECT_TRUE(Tools().Initialize((L"C:\\" + std::wstring(231, L'w')).c_str()));
    EXPECT_EQ(wcslen(Tools().m_szZipFilePath), 259u);
}

// Everything but adb is real.
class DeployedPlatformTools : public PlatformTools
{
protected:
    DeployedPlatformTools()
    {
        EXPECT_TRUE(Tools().Initialize(WorkingFolder().c_str()));
    }

    void MakeLeftOvers()
    {
        create_directories(ToolsFolder() / "sub");
        WriteTextFile(ToolsFolder() / "adb.exe", "old");
        WriteTextFile(ToolsFolder() / "sub" / "file", "old");
        WriteTextFile(Archive(), "old");
    }

    // They are gone, and whether that went well.
    void ExpectRemoved(bool bWell, std::source_location where = std::source_location::current())
    {
        const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()),
                                         "the removal expected here");
        EXPECT_EQ(Tools().Uninstall(), bWell);
        EXPECT_FALSE(exists(ToolsFolder()));
        EXPECT_FALSE(exists(Archive()));
    }

    AnsweringAdb m_adb;
};

TEST_F(DeployedPlatformTools, AreInstalledOnACleanAccount)
{
    const REPLACED(SHCreateDirectoryExW) createFolder;
    const REPLACED(FindResourceW) find;
    const REPLACED(LoadResource) load;
    const REPLACED(LockResource) lock;
    const REPLACED(SizeofResource) size;
    EXPECT_TRUE(Tools().Install());
    EXPECT_EQ(Journal(),
              (Lines{"SHCreateDirectoryExW", "FindResourceW", "LoadResource", "LockResource", "SizeofResource"}));
    EXPECT_EQ(createFolder.Arguments(), std::tuple(nullptr, ToolsFolder().wstring(), nullptr));
    EXPECT_EQ(find.Arguments(), std::tuple(nullptr, L"#223", L"#10"));
    EXPECT_EQ(load.Arguments(), std::tuple(nullptr, kAny));
    EXPECT_EQ(size.Arguments(), load.Arguments());
}

TEST_F(DeployedPlatformTools, AreThoseOfTheProgramAndLeaveNothingWhenTheyAreRemoved)
{
    EXPECT_TRUE(Tools().Install());
    EXPECT_EQ(Tools().m_szAdbExePath, (ToolsFolder() / "adb.exe").wstring());
    EXPECT_EQ(file_size(ToolsFolder() / "adb.exe"), 5992960u);
    EXPECT_EQ(file_size(ToolsFolder() / "AdbWinApi.dll"), 97792u);
    EXPECT_EQ(file_size(ToolsFolder() / "AdbWinUsbApi.dll"), 62976u);
    EXPECT_EQ(ReadTextFile(ToolsFolder() / "adb.exe").substr(0, 2), "MZ");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ToolsFolder()), {}), 3);
    const HRSRC hResource = FindResourceW(nullptr, MAKEINTRESOURCEW(223), RT_RCDATA);
    const auto* pData = static_cast<const char*>(LockResource(LoadResource(nullptr, hResource)));
    EXPECT_EQ(ReadTextFile(Archive()), std::string(pData, SizeofResource(nullptr, hResource)));

    m_adb.Prints("");
    ExpectRemoved(true);
    EXPECT_TRUE(is_empty(WorkingFolder()));
    EXPECT_EQ(m_adb.Commands(), std::vector<std::wstring>{L" kill-server"});
}

TEST_F(DeployedPlatformTools, AreRemovedWithTheArchivesOfOtherBuilds)
{
    MakeLeftOvers();
    for (const char* pszName :
         {"platform-tools_other.zip", "platform-tools_.zip", "platform-tools.zip", "platform-tools_kalvo.txt"}) {
        WriteTextFile(WorkingFolder() / pszName, "text");
    }
    m_adb.Prints("");
    ExpectRemoved(true);
    EXPECT_FALSE(exists(WorkingFolder() / "platform-tools_other.zip"));
    EXPECT_FALSE(exists(WorkingFolder() / "platform-tools_.zip"));
    EXPECT_TRUE(exists(WorkingFolder() / "platform-tools.zip"));
    EXPECT_TRUE(exists(WorkingFolder() / "platform-tools_kalvo.txt"));
}

TEST_F(DeployedPlatformTools, AreRemovedOnlyAfterTheServerWasStopped)
{
    MakeLeftOvers();
    m_adb.Prints("").WhenItRuns([this](size_t) { EXPECT_TRUE(exists(ToolsFolder() / "adb.exe")); });
    const REPLACED(SHFileOperationW) fileOperation;
    const REPLACED(FindFirstFileW) findFirst;
    const REPLACED(DeleteFileW) deleteFile;
    const REPLACED(FindClose) findClose;
    ExpectRemoved(true);
    EXPECT_EQ(Journal(), (Lines{"sleep 2000", "adb kill-server", "SHFileOperationW", "FindFirstFileW", "DeleteFileW",
                                "FindClose"}));
}

TEST_F(DeployedPlatformTools, AreRemovedThoughNoServerRan)
{
    MakeLeftOvers();
    m_adb.Prints("cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. "
                 "(10061)\r\n");
    ExpectRemoved(true);
}

TEST_F(DeployedPlatformTools, AreRemovedButNotWellWhenTheServerCouldNotBeStopped)
{
    MakeLeftOvers();
    m_adb.Prints("error: what?\r\n");
    ExpectRemoved(false);
    MakeLeftOvers();
    m_adb.PrintsAndHidesItsExitCode("");
    ExpectRemoved(false);
}

TEST_F(DeployedPlatformTools, WithoutTheirFolderAreNotRemovedWellButTheArchiveIsGone)
{
    MakeLeftOvers();
    remove_all(ToolsFolder());
    m_adb.Prints("");
    ExpectRemoved(false);
}

TEST_F(DeployedPlatformTools, AreRemovedWellWithoutAnyArchive)
{
    MakeLeftOvers();
    std::filesystem::remove(Archive());
    m_adb.Prints("");
    ExpectRemoved(true);
}

TEST_F(DeployedPlatformTools, AreNotRemovedWellWhenAnArchiveIsHeldOpen)
{
    MakeLeftOvers();
    m_adb.Prints("");
    const HANDLE hFile = CreateFileW(Archive().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(Tools().Uninstall());
    CloseHandle(hFile);
    EXPECT_TRUE(exists(Archive()));
    EXPECT_FALSE(exists(ToolsFolder()));
}

// Nothing is answered here: the real adb runs, and its server is of this test's home alone.
using RunningPlatformTools = PlatformTools;

TEST_F(RunningPlatformTools, AreRemovedThoughTheirServerHeldThemOpen)
{
    ASSERT_TRUE(Tools().Initialize(WorkingFolder().c_str()));
    ASSERT_TRUE(Tools().Install());
    EXPECT_TRUE(Tools().Uninstall()); // it never ran
    ASSERT_TRUE(Tools().Install());
    std::string strOutput;
    EXPECT_EQ(Connect(L"127.0.0.1:5999", &strOutput), CONNECT_CANNOT_CONNECT) << strOutput;
    EXPECT_NE(strOutput.find("daemon started successfully"), std::string::npos) << strOutput;
    EXPECT_FALSE(DeleteFileW(Tools().m_szAdbExePath));
    EXPECT_TRUE(Tools().Uninstall());
    EXPECT_TRUE(is_empty(WorkingFolder()));
}

using PlatformToolsFolder = DeployedPlatformTools;

TEST_F(PlatformToolsFolder, MayBeThereAlready)
{
    create_directories(ToolsFolder());
    for (const int nResult : {0, 183, 80}) {
        const REPLACED(SHCreateDirectoryExW) createFolder(Returns(nResult));
        EXPECT_TRUE(Tools().Install()) << nResult;
    }
}

TEST_F(PlatformToolsFolder, ThatCannotBeMadeEndsTheProcessWithTheResult)
{
    const REPLACED(SHCreateDirectoryExW) createFolder(Returns(3));
    const REPLACED(FindResourceW) findResource(Never());
    ExpectEnd([] { Tools().Install(); }, 3, L"CreateFolderPath() > SHCreateDirectoryEx()", true);
}

// The list of paths ends with an empty one, for the longest path too.
TEST_F(PlatformToolsFolder, IsDeletedByTheShellSilentlyAndForGood)
{
    for (const std::wstring& strPath : {ToolsFolder().wstring(), L"C:\\" + std::wstring(256, L'p')}) {
        SCOPED_TRACE(Narrow(strPath));
        wcscpy_s(Tools().m_szPlatformToolsFolderPath, strPath.c_str());
        SHFILEOPSTRUCTW asked = {};
        std::wstring strFrom;
        const REPLACED(SHFileOperationW) fileOperation([&](SHFILEOPSTRUCTW* pOperation) {
            asked = *pOperation;
            strFrom.assign(pOperation->pFrom, strPath.size() + 2);
            return 0;
        });
        EXPECT_TRUE(Tools().DeleteFolder());
        EXPECT_EQ(asked.hwnd, nullptr);
        EXPECT_EQ(asked.wFunc, static_cast<UINT>(FO_DELETE));
        EXPECT_EQ(strFrom, strPath + std::wstring(2, L'\0'));
        EXPECT_EQ(asked.pTo, nullptr);
        EXPECT_EQ(asked.fFlags, 0x0414);
        EXPECT_EQ(asked.fAnyOperationsAborted, FALSE);
        EXPECT_EQ(asked.hNameMappings, nullptr);
        EXPECT_EQ(asked.lpszProgressTitle, nullptr);
    }
}

TEST_F(PlatformToolsFolder, ThatIsMissingIsNotDeletedWithoutAWord)
{
    const REPLACED(SHFileOperationW) fileOperation(Returns(2));
    EXPECT_FALSE(Tools().DeleteFolder());
}

TEST_F(PlatformToolsFolder, ThatCannotBeDeletedEndsTheProcessWithThirteen)
{
    for (const int nResult : {5, 3, 124, 0x78, 1}) {
        SCOPED_TRACE(nResult);
        const REPLACED(SHFileOperationW) fileOperation(Returns(nResult));
        ExpectEnd([] { Tools().DeleteFolder(); }, 13, L"DeleteFolder() > SHFileOperation()", true);
    }
}

using PlatformToolsResource = DeployedPlatformTools;

TEST_F(PlatformToolsResource, ThatCannotBeHadEndsTheProcessWithTheLastError)
{
    const auto install = [] { Tools().Install(); };
    {
        const REPLACED(FindResourceW) find(Returns(HRSRC(nullptr), ERROR_RESOURCE_NAME_NOT_FOUND));
        ExpectEnd(install, 1814, L"LockZipFileResource() > FindResource()", false);
    }
    {
        const REPLACED(LoadResource) load(Returns(HGLOBAL(nullptr), ERROR_NOT_ENOUGH_MEMORY));
        ExpectEnd(install, 8, L"LockZipFileResource() > LoadResource()", false);
    }
    const REPLACED(LockResource) lock(Returns(static_cast<void*>(nullptr), ERROR_INVALID_DATA));
    ExpectEnd(install, 13, L"LockZipFileResource() > LockResource()", false);
    EXPECT_FALSE(exists(Archive()));
}

// The tools' archive is replaced by a small one, so that what happens to its file can be followed.
class PlatformToolsArchive : public DeployedPlatformTools
{
protected:
    void* Resource()
    {
        return m_strZip.data();
    }

    std::string m_strZip = StoredZip({{"platform-tools/adb.exe", "tool"}});
    REPLACED(FindResourceW) m_find { Quietly(Returns(reinterpret_cast<HRSRC>(this))) };
    REPLACED(LoadResource) m_load { Quietly(Returns(static_cast<HGLOBAL>(this))) };
    REPLACED(LockResource) m_lock { Quietly(Returns(Resource())) };
    REPLACED(SizeofResource) m_size { Quietly(Returns(static_cast<DWORD>(m_strZip.size()))) };
};

TEST_F(PlatformToolsArchive, IsWrittenWholeAndUnpacked)
{
    const REPLACED(CreateFileW) create;
    const REPLACED(WriteFile) write;
    HANDLE hFile = nullptr;
    const REPLACED(CloseHandle) close([&](HANDLE h) { return close.Next(hFile = h); });
    EXPECT_TRUE(Tools().Install());
    EXPECT_EQ(ReadTextFile(ToolsFolder() / "adb.exe"), "tool");

    EXPECT_EQ(m_lock.Arg<0>(), this);
    EXPECT_EQ(create.Arguments(), std::tuple(Archive().wstring(), GENERIC_WRITE, 0u, nullptr, DWORD(CREATE_ALWAYS),
                                             DWORD(FILE_ATTRIBUTE_NORMAL), nullptr));
    EXPECT_EQ(write.Arguments(), std::tuple(hFile, Resource(), m_strZip.size(), kAny, nullptr));
    EXPECT_NE(write.Arg<3>(), nullptr);
    EXPECT_EQ(Journal(), (Lines{"CreateFileW", "WriteFile", "CloseHandle"}));
}

TEST_F(PlatformToolsArchive, OfAnEarlierRunIsOverwritten)
{
    create_directories(WorkingFolder());
    WriteTextFile(Archive(), std::string(100000, 'x'));
    EXPECT_TRUE(Tools().Install());
    EXPECT_EQ(ReadTextFile(Archive()), m_strZip);
}

TEST_F(PlatformToolsArchive, ThatCannotBeCreatedIsToldAndFails)
{
    const REPLACED(CreateFileW) create(Returns(INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED));
    const REPLACED(WriteFile) write(Never());
    const REPLACED(_wfopen_s) read(Never());
    EXPECT_FALSE(Tools().Install());
    ExpectBox(L"CPlatformTools::WriteZipFileResource() > CreateFile() failed with error 5: " + SystemDescription(5),
              L"Error");
}

TEST_F(PlatformToolsArchive, ThatCannotBeWrittenFailsWithoutAWordAndStaysOpen)
{
    const REPLACED(CreateFileW) create(Returns(reinterpret_cast<HANDLE>(0xF11E1)));
    const REPLACED(WriteFile) write(Returns(FALSE, ERROR_DISK_FULL));
    const REPLACED(CloseHandle) close(Never());
    const REPLACED(_wfopen_s) read(Never());
    EXPECT_FALSE(Tools().Install());
}

TEST_F(PlatformToolsArchive, ThatCannotBeClosedFailsWithoutAWord)
{
    const REPLACED(CloseHandle) close([&](HANDLE h) {
        close.Next(h);
        return FALSE;
    });
    const REPLACED(_wfopen_s) read(Never());
    EXPECT_FALSE(Tools().Install());
    EXPECT_EQ(close.Calls(), 1u);
}

TEST_F(PlatformToolsArchive, IsReadByItsNameInTheThreadsCodePage)
{
    const REPLACED(WideCharToMultiByte) narrow;
    EXPECT_TRUE(Tools().Install());
    EXPECT_EQ(narrow.Calls(), 2u);
    const std::wstring paths[] = {Archive().wstring(), WorkingFolder().wstring()};
    for (size_t n = 0; n < 2; ++n) {
        const int cb = 4 * static_cast<int>(paths[n].size() + 1); // four bytes for each character
        EXPECT_EQ(narrow.Arguments(n),
                  std::tuple(UINT(CP_THREAD_ACP), kAny, paths[n], kAny, kAny, cb, nullptr, nullptr));
    }
}

TEST_F(PlatformToolsArchive, WhoseNameNeedsMoreRoomIsNarrowedAgain)
{
    const auto tooSmall = Returns(0, ERROR_INSUFFICIENT_BUFFER);
    const REPLACED(WideCharToMultiByte) narrow{InTurn(tooSmall, PassOn(), PassOn(), PassOn())};
    EXPECT_TRUE(Tools().Install());
    EXPECT_EQ(narrow.Arg<5>(1), 0);
    EXPECT_EQ(narrow.Arg<2>(2), Archive().wstring());
    // As long as the system said.
    EXPECT_EQ(narrow.Arg<5>(2), static_cast<int>(Archive().wstring().size() + 1));
}

TEST_F(PlatformToolsArchive, WhoseNameCannotBeNarrowedRaisesAnException)
{
    {
        const REPLACED(WideCharToMultiByte) narrow{InTurn(Returns(0, ERROR_NO_UNICODE_TRANSLATION))};
        EXPECT_THROW(Tools().Install(), CAtlException);
    }
    const auto tooSmall = Returns(0, ERROR_INSUFFICIENT_BUFFER);
    const REPLACED(WideCharToMultiByte) narrow{InTurn(tooSmall, PassOn(), tooSmall)};
    EXPECT_THROW(Tools().Install(), CAtlException);
    EXPECT_EQ(narrow.Calls(), 3u);
}

TEST_F(PlatformToolsArchive, ThatCannotBeOpenedOrUnpackedFailsWithoutAWord)
{
    {
        const REPLACED(_wfopen_s) open(Returns(errno_t(EACCES)));
        EXPECT_FALSE(Tools().Install());
        EXPECT_EQ(open.Arg<1>(), Archive().wstring());
    }
    {
        const REPLACED(SizeofResource) size(Returns(DWORD(10)));
        EXPECT_FALSE(Tools().Install()) << "though it is none";
        EXPECT_EQ(file_size(Archive()), 10u);
    }
    const std::string strDamaged = StoredZip({{"platform-tools/adb.exe", "tool", 0, 0, 1}});
    ASSERT_EQ(strDamaged.size(), m_strZip.size());
    std::ranges::copy(strDamaged, m_strZip.begin());
    EXPECT_FALSE(Tools().Install()) << "though it is damaged";
}

// The user's name is not ASCII: the archive library reads the narrowed path as UTF-8, so where the
// thread's code page is another one the two do not meet, and nothing is written anywhere else.
TEST_F(PlatformToolsArchive, BelowAnUnnarrowablePathIsNotUnpacked)
{
    Tools() = {};
    const std::filesystem::path folder = m_folder.Path() / L"J\u00F6rg";
    ASSERT_TRUE(Tools().Initialize(folder.c_str()));
    ASSERT_NE(GetACP(), static_cast<UINT>(CP_UTF8));
    EXPECT_FALSE(Tools().Install());
    EXPECT_TRUE(exists(folder / "platform-tools_kalvo.zip"));
    EXPECT_FALSE(exists(folder / "platform-tools" / "adb.exe"));
}

class PlatformToolsArchives : public DeployedPlatformTools
{
protected:
    PlatformToolsArchives()
        : m_findFirst(Maybe([this](PCWSTR, WIN32_FIND_DATAW* pFound) {
              m_nFound = 0;
              return Find(pFound) ? hFind : INVALID_HANDLE_VALUE;
          })),
          m_findNext(Maybe([this](HANDLE, WIN32_FIND_DATAW* pFound) { return Find(pFound); })),
          m_delete(Maybe([this](PCWSTR pszPath) -> BOOL { return pszPath != m_strUndeletable; }))
    {
    }

    BOOL Find(WIN32_FIND_DATAW* pFound)
    {
        if (m_nFound == m_names.size()) {
            SetLastError(ERROR_NO_MORE_FILES);
            return FALSE;
        }
        wcscpy_s(pFound->cFileName, m_names[m_nFound++].c_str());
        return TRUE;
    }

    // The rest of the removal goes well.
    bool DeletesArchives()
    {
        m_adb.Prints("");
        const REPLACED(SHFileOperationW) fileOperation(Returns(0));
        const bool bResult = Tools().Uninstall();
        Lines& journal = Journal();
        journal.erase(journal.begin(), std::ranges::find(journal, "SHFileOperationW") + 1);
        return bResult;
    }

    const HANDLE hFind = reinterpret_cast<HANDLE>(0xF17D);
    std::vector<std::wstring> m_names = {L"platform-tools_a.zip", L"platform-tools_b.zip", L"platform-tools_c.zip"};
    size_t m_nFound = 0;
    std::wstring m_strUndeletable;
    REPLACED(FindFirstFileW) m_findFirst;
    REPLACED(FindNextFileW) m_findNext;
    REPLACED(DeleteFileW) m_delete;
    REPLACED(FindClose) m_close { Maybe(Returns(TRUE)) };
};

TEST_F(PlatformToolsArchives, AreAllDeleted)
{
    EXPECT_TRUE(DeletesArchives());
    EXPECT_EQ(Journal(), (Lines{"FindFirstFileW", "DeleteFileW", "FindNextFileW", "DeleteFileW", "FindNextFileW",
                                "DeleteFileW", "FindNextFileW", "FindClose"}));
    EXPECT_EQ(m_findFirst.Arg<0>(), (WorkingFolder() / "platform-tools_*.zip").wstring());
    EXPECT_EQ(m_delete.Arg<0>(0), (WorkingFolder() / "platform-tools_a.zip").wstring());
    EXPECT_EQ(m_delete.Arg<0>(2), (WorkingFolder() / "platform-tools_c.zip").wstring());
    EXPECT_EQ(m_findNext.Arg<0>(), hFind);
    EXPECT_EQ(m_close.Arg<0>(), hFind);
}

TEST_F(PlatformToolsArchives, MayBeNone)
{
    m_names.clear();
    EXPECT_TRUE(DeletesArchives());
    EXPECT_EQ(Journal(), Lines{"FindFirstFileW"});
}

TEST_F(PlatformToolsArchives, TheFirstThatCannotBeDeletedEndsTheSearch)
{
    m_strUndeletable = (WorkingFolder() / "platform-tools_b.zip").wstring();
    EXPECT_FALSE(DeletesArchives());
    EXPECT_EQ(Journal(), (Lines{"FindFirstFileW", "DeleteFileW", "FindNextFileW", "DeleteFileW", "FindClose"}));
    // The last one is no better.
    m_strUndeletable = (WorkingFolder() / "platform-tools_c.zip").wstring();
    EXPECT_FALSE(DeletesArchives());
    EXPECT_EQ(m_delete.Calls(), 2u + 3u);
    EXPECT_EQ(Journal().back(), "FindClose");
}

TEST_F(PlatformToolsArchives, FailWhenThePatternOrAPathCannotBeMade)
{
    {
        const REPLACED(PathCchCombine) combine{InTurn(Returns(HRESULT(E_INVALIDARG)))};
        EXPECT_FALSE(DeletesArchives());
        EXPECT_EQ(combine.Arguments(), std::tuple(kAny, 260u, WorkingFolder().wstring(), L"platform-tools_*.zip"));
        EXPECT_EQ(m_findFirst.Calls(), 0u);
    }
    const REPLACED(PathCchCombine) combine{InTurn(PassOn(), Returns(HRESULT(E_INVALIDARG)))};
    EXPECT_FALSE(DeletesArchives());
    EXPECT_EQ(combine.Arg<3>(1), L"platform-tools_a.zip");
    EXPECT_EQ(m_delete.Calls(), 0u);
    EXPECT_EQ(Journal().back(), "FindClose");
}

} // namespace
