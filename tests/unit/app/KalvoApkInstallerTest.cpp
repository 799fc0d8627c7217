// The application's paths.

#include "app/ground/KalvoApkInstaller.h"

#include "tests/kit/Test.h"

#include <knownfolders.h>
#include <objbase.h>
#include <pathcch.h>
#include <shlobj.h>

using namespace kit;

namespace {

// The fields, in order.
static_assert(offsetof(CKalvoApkInstaller, m_bInitialized) == 0);
static_assert(offsetof(CKalvoApkInstaller, m_szFileName) == 4);
static_assert(offsetof(CKalvoApkInstaller, m_szFolderPath) == 4 + 520);
static_assert(offsetof(CKalvoApkInstaller, m_szFullPath) == 4 + 2 * 520);
static_assert(offsetof(CKalvoApkInstaller, m_szAppDataFolderPath) == 4 + 3 * 520);
static_assert(sizeof(CKalvoApkInstaller) == 4 + 4 * 520);

class ApplicationPaths : public Test
{
protected:
    ApplicationPaths()
        : m_imageName(Maybe([this](HANDLE, DWORD, PWSTR pszPath, DWORD* pcch) {
              m_cchPath = *pcch;
              wcscpy_s(pszPath, MAX_PATH, m_strExecutable.c_str());
              *pcch = static_cast<DWORD>(m_strExecutable.size());
              return TRUE;
          })),
          m_knownFolder(Maybe([this](const GUID&, DWORD, HANDLE, PWSTR* ppszPath) {
              const size_t cb = (m_strLocalAppData.size() + 1) * sizeof(WCHAR);
              m_pszGiven = *ppszPath = static_cast<PWSTR>(CoTaskMemAlloc(cb));
              memcpy(*ppszPath, m_strLocalAppData.c_str(), cb);
              return m_hrKnownFolder;
          }))
    {
        Paths() = {};
    }

    static CKalvoApkInstaller& Paths()
    {
        return CKalvoApkInstaller::GetInstance();
    }

    void ExpectPaths(PCWSTR pszFolder, PCWSTR pszFile)
    {
        EXPECT_TRUE(Paths().Initialize());
        EXPECT_EQ(Paths().m_bInitialized, 1);
        EXPECT_EQ(Paths().m_szFullPath, m_strExecutable);
        EXPECT_STREQ(Paths().m_szFolderPath, pszFolder);
        EXPECT_STREQ(Paths().m_szFileName, pszFile);
        EXPECT_EQ(Paths().m_szAppDataFolderPath, m_strLocalAppData + L"\\KALVO_ApkInstaller");
    }

    // Under this call's name.
    void ExpectEnd(UINT nExitCode, const std::wstring& strCall)
    {
        EXPECT_EQ(ExitCodeOf([] { Paths().Initialize(); }), nExitCode);
        EXPECT_EQ(TakeBox().strCaption, L"CKalvoApkInstaller::GetAppDataLocalFolderPath() > " + strCall);
        EXPECT_EQ(Paths().m_bInitialized, 0);
    }

    std::wstring m_strExecutable = L"D:\\Some folder\\sub.dir\\Kalvo Installer.v2.exe";
    std::wstring m_strLocalAppData = L"C:\\Users\\kim\\AppData\\Local";
    HRESULT m_hrKnownFolder = S_OK;
    DWORD m_cchPath = 0;
    PWSTR m_pszGiven = nullptr;
    REPLACED(QueryFullProcessImageNameW) m_imageName;
    REPLACED(SHGetKnownFolderPath) m_knownFolder;
    REPLACED(CoTaskMemFree) m_free { Quietly() };
};

TEST_F(ApplicationPaths, AreThoseOfTheExecutableAndTheUser)
{
    ExpectPaths(L"D:\\Some folder\\sub.dir\\", L"Kalvo Installer.v2.exe");
    EXPECT_EQ(m_imageName.Arguments(), std::tuple(GetCurrentProcess(), 0u, Paths().m_szFullPath, kAny));
    EXPECT_EQ(m_cchPath, 260u);
    EXPECT_EQ(m_knownFolder.Arguments(), std::tuple(FOLDERID_LocalAppData, 0u, nullptr, kAny));
    EXPECT_EQ(m_free.Calls(), 1u);
    EXPECT_EQ(m_free.Arg<0>(), m_pszGiven);
}

TEST_F(ApplicationPaths, MayBeAtTheRootOfADrive)
{
    m_strExecutable = L"E:\\a.exe";
    ExpectPaths(L"E:\\", L"a.exe");
}

// The runtime declares these in several forms, so the form that is imported is spelled out.
using Split =
    Replaced<"_wsplitpath_s", errno_t (*)(PCWSTR, PWSTR, size_t, PWSTR, size_t, PWSTR, size_t, PWSTR, size_t)>;
using Make = Replaced<"_wmakepath_s", errno_t (*)(PWSTR, size_t, PCWSTR, PCWSTR, PCWSTR, PCWSTR)>;
using Copy = Replaced<"wcsncpy_s", errno_t (*)(PWSTR, size_t, PCWSTR, size_t)>;

TEST_F(ApplicationPaths, AreMadeWithinTheirBounds)
{
    const Split split;
    const Make make;
    const Copy copy;
    const REPLACED(PathCchAppend) append;
    EXPECT_TRUE(Paths().Initialize());
    EXPECT_EQ(split.Arguments(), std::tuple(m_strExecutable, kAny, 3u, kAny, 256u, kAny, 256u, kAny, 256u));
    EXPECT_EQ(make.Arguments(0), std::tuple(Paths().m_szFolderPath, 260u, kAny, kAny, kAny, kAny));
    EXPECT_EQ(make.Arguments(1), std::tuple(Paths().m_szFileName, 260u, kAny, kAny, kAny, kAny));
    EXPECT_EQ(copy.Arguments(), std::tuple(Paths().m_szAppDataFolderPath, 260u, kAny, kAny));
    EXPECT_EQ(append.Arguments(), std::tuple(Paths().m_szAppDataFolderPath, 260u, kAny));
}

// As the runtime fails: with nothing in what it was to fill.
TEST_F(ApplicationPaths, AreThereThoughTheExecutablesCannotBeSplitOrMade)
{
    {
        const Split split([](PCWSTR, PWSTR pszDrive, size_t, PWSTR pszDirectory, size_t, PWSTR pszName, size_t,
                             PWSTR pszExtension, size_t) -> errno_t {
            *pszDrive = *pszDirectory = *pszName = *pszExtension = L'\0';
            return ERANGE;
        });
        ExpectPaths(L"", L"");
    }
    Paths() = {};
    const Make make([](PWSTR psz, auto&&...) -> errno_t {
        *psz = L'\0';
        return EINVAL;
    });
    ExpectPaths(L"", L"");
}

using RealPaths = Test;

TEST_F(RealPaths, AreThoseOfThisVeryProgram)
{
    CKalvoApkInstaller& paths = CKalvoApkInstaller::GetInstance();
    paths = {};
    EXPECT_TRUE(paths.Initialize());
    WCHAR szSelf[MAX_PATH];
    GetModuleFileNameW(nullptr, szSelf, MAX_PATH);
    EXPECT_STREQ(paths.m_szFullPath, szSelf);
    EXPECT_EQ(std::wstring(paths.m_szFolderPath) + paths.m_szFileName, szSelf);
    EXPECT_TRUE(std::wstring(paths.m_szAppDataFolderPath).ends_with(L"\\AppData\\Local\\KALVO_ApkInstaller"));
}

TEST_F(ApplicationPaths, ASecondInitialisationFailsAndAsksNothing)
{
    ASSERT_TRUE(Paths().Initialize());
    Journal().clear();
    EXPECT_FALSE(Paths().Initialize());
    EXPECT_EQ(Journal(), Lines());
}

TEST_F(ApplicationPaths, FailWithoutAWordWhenTheExecutablesPathCannotBeHad)
{
    const REPLACED(QueryFullProcessImageNameW) imageName(Returns(FALSE, ERROR_INSUFFICIENT_BUFFER));
    EXPECT_FALSE(Paths().Initialize());
    EXPECT_EQ(Paths().m_bInitialized, 0);
    EXPECT_EQ(m_knownFolder.Calls(), 0u);
}

TEST_F(ApplicationPaths, EndTheProcessWhenTheUsersFolderCannotBeHad)
{
    m_hrKnownFolder = E_ACCESSDENIED;
    ExpectEnd(0x80070005u, L"SHGetKnownFolderPath()");
}

TEST_F(ApplicationPaths, EndTheProcessWhenTheWorkingFolderCannotBeAppended)
{
    const REPLACED(PathCchAppend) append(Returns(HRESULT(0x8007007A)));
    ExpectEnd(0x8007007Au, L"PathCchAppend()");
}

// Room for 259 characters: 240 and "\KALVO_ApkInstaller" just fit.
TEST_F(ApplicationPaths, TheWorkingFolderMayFillThePath)
{
    m_strLocalAppData = L"C:\\" + std::wstring(237, L'u');
    ExpectPaths(L"D:\\Some folder\\sub.dir\\", L"Kalvo Installer.v2.exe");
}

TEST_F(ApplicationPaths, AWorkingFolderLongerThanThePathEndsTheProcess)
{
    for (const size_t nLength : {238u, 256u, 297u}) {
        SCOPED_TRACE(nLength);
        Paths() = {};
        m_strLocalAppData = L"C:\\" + std::wstring(nLength, L'u');
        const std::optional<UINT> exitCode = ExitCodeOf([] { Paths().Initialize(); });
        ASSERT_TRUE(exitCode.has_value());
        EXPECT_TRUE(FAILED(static_cast<HRESULT>(*exitCode)));
        EXPECT_EQ(TakeBox().strCaption, L"CKalvoApkInstaller::GetAppDataLocalFolderPath() > PathCchAppend()");
    }
}

} // namespace
