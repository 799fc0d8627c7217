// The page that installs the package.

#include "wizard/InstallApkPage.h"

#include "adb/ConsoleProcess.h"
#include "app/ground/KalvoApkInstaller.h"

#include "tests/kit/AnsweringAdb.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/unit/wizard/AnsweringWatch.h"
#include "tests/unit/wizard/Detour.h"
#include "tests/unit/wizard/PageWindow.h"

#include <cstring>

using namespace kit;

namespace {

constexpr int kBody = 1019;
constexpr int kStatus = 1021;
constexpr int kPath = 1038;

constexpr PCWSTR kCaption = L"ADB Install";
constexpr PCWSTR kNotConnected = L"Unable to connect to watch.  Please try again, if that does not work, then:\n"
                                 L"Steps to revoke debugging authorizations:\n"
                                 L"1. Open the watch's Settings.\n"
                                 L"2. Scroll down and tap Developer options.\n"
                                 L"3. Scroll down and tap Revoke debugging authorizations.\n"
                                 L"4. Tap the blue button to confirm you are sure.\n";
constexpr PCWSTR kTryAgain = L"Unable to install the APK, please press Next to try again";
constexpr PCWSTR kNotStopped = L"Unable to stop the adb service. Please report this error to KALVO\n";

constexpr PCSTR kStopped = "";
constexpr PCSTR kNoServer =
    "cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. (10061)\r\n";
constexpr PCSTR kConnected = "* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n"
                             "connected to 192.168.1.100:43210\r\n";
constexpr PCSTR kAlreadyConnected = "already connected to 192.168.1.100:43210\r\n";
constexpr PCSTR kCannotConnect = "cannot connect to 192.168.1.100:43210: Connection refused. (10061)\r\n";
constexpr PCSTR kNotAuthenticated = "failed to authenticate to 192.168.1.100:43210\r\n";
constexpr PCSTR kUnknown = "something that adb never printed before\r\n";
constexpr PCSTR kInstalled = "Performing Streamed Install\r\nSuccess\r\n";
constexpr PCSTR kInstallFailed = "Performing Streamed Install\r\nadb: failed to install a.apk: \r\n";
constexpr PCSTR kOffline = "adb.exe: device offline\r\n";
constexpr PCSTR kNoDevices = "adb.exe: no devices/emulators found\r\n";

std::string BoxLine(const std::wstring& strText)
{
    return "box \"" + Narrow(strText) + '"';
}

std::string StatusLine(const std::wstring& strText)
{
    return "status \"" + Narrow(strText) + '"';
}

// What adb prints when the watch names this reason.
std::string FailureNamed(const std::string& strName)
{
    return "Performing Streamed Install\r\nadb: failed to install C:\\solvane.apk: Failure [" + strName +
           ": because]\r\n";
}

// The folder of the program, for the length of a scope.
class ProgramFolder
{
public:
    explicit ProgramFolder(const std::wstring& strFolder)
    {
        wcscpy_s(Path(), strFolder.c_str());
    }

    ~ProgramFolder()
    {
        Path()[0] = L'\0';
    }

    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

private:
    static WCHAR (&Path())[MAX_PATH]
    {
        return CKalvoApkInstaller::GetInstance().m_szFolderPath;
    }
};

class NewInstallApkPage : public Test
{
protected:
    NewInstallApkPage()
    {
        reinterpret_cast<SOCKADDR_IN&>(m_data.m_saWatchAddress) = MakeAddress(L"192.168.1.100", 43210);
    }

    std::wstring InFolder(PCWSTR pszName) const
    {
        return (m_folder.Path() / pszName).wstring();
    }

    Sockets m_sockets;
    TemporaryFolder m_folder;
    ProgramFolder m_programFolder{m_folder.Path().wstring() + L'\\'};
    CWizardData m_data;
};

TEST_F(NewInstallApkPage, LoadsItsTextAndKeepsTheData)
{
    PageWindow page(206, CInstallApkPage::DialogProc, m_data);
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(GetWindowLongPtrW(page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    const std::wstring strBody = page.Text(kBody);
    EXPECT_TRUE(strBody.starts_with(L"You are now ready to install a Solvane application APK file on the watch."));
    EXPECT_TRUE(strBody.ends_with(L"It might take several trys for installation to complete."));
    EXPECT_EQ(page.Text(kStatus), L"Enter path to APK and then press Next button.");
}

TEST_F(NewInstallApkPage, KeepsTheTextOfTheTemplateWhenNoneCanBeLoaded)
{
    const REPLACED(LoadStringW) load(Returns(0));
    const PageWindow page(206, CInstallApkPage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kBody), L"Static");
    EXPECT_EQ(load.Arg<1>(), 211u);
}

TEST_F(NewInstallApkPage, StartsWithThePackageBesideTheProgram)
{
    WriteTextFile(m_folder.Path() / "readme.txt", "x");
    WriteTextFile(m_folder.Path() / "Solvane Watch.1.2.apk", "x");
    PageWindow page(206, CInstallApkPage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kPath), InFolder(L"Solvane Watch.1.2.apk"));
    EXPECT_EQ(page.LastButtons(), kWithNext);
}

TEST_F(NewInstallApkPage, StartsEmptyWithoutAPackageBesideTheProgram)
{
    WriteTextFile(m_folder.Path() / "readme.txt", "x");
    PageWindow page(206, CInstallApkPage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kPath), L"");
    EXPECT_EQ(page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(NewInstallApkPage, StartsWithTheFirstPackageThatTheSearchFinds)
{
    const ProgramFolder elsewhere(L"C:\\Program Files\\KALVO\\");
    REPLACED(FindFirstFileW)
    search([](PCWSTR, WIN32_FIND_DATAW* pFound) {
        std::memset(pFound, 0xCC, sizeof(*pFound));
        wcscpy_s(pFound->cFileName, L"second in the alphabet.apk");
        return reinterpret_cast<HANDLE>(0xF1D);
    });
    REPLACED(FindNextFileW) next;
    next.Optional();
    const REPLACED(FindClose) close(Returns(TRUE));
    const PageWindow page(206, CInstallApkPage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kPath), L"C:\\Program Files\\KALVO\\second in the alphabet.apk");
    ASSERT_EQ(search.Calls(), 1u);
    EXPECT_EQ(search.Arg<0>(), L"C:\\Program Files\\KALVO\\*.apk");
    EXPECT_EQ(next.Calls(), 0u);
    ASSERT_EQ(close.Calls(), 1u);
    EXPECT_EQ(close.Arg<0>(), reinterpret_cast<HANDLE>(0xF1D));
}

TEST_F(NewInstallApkPage, ClosesNoSearchThatFoundNothing)
{
    const REPLACED(FindFirstFileW) search(Returns(INVALID_HANDLE_VALUE, ERROR_FILE_NOT_FOUND));
    REPLACED(FindClose) close;
    close.Optional();
    const PageWindow page(206, CInstallApkPage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kPath), L"");
    EXPECT_TRUE(page.TextsOf(kPath).empty());
    EXPECT_EQ(close.Calls(), 0u);
}

TEST_F(NewInstallApkPage, DoesNotSearchWithoutAPathEdit)
{
    REPLACED(FindFirstFileW) search;
    search.Optional();
    PageWindow page(206, CInstallApkPage::DialogProc, m_data, {kPath});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(search.Calls(), 0u);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{kWithoutNext});
}

// The page, shown for the first time with an empty path, with a watch that answers pings and an adb
// that the test scripts.
class InstallApkPage : public NewInstallApkPage
{
protected:
    InstallApkPage()
    {
        m_page.TakeButtons();
        Journal().clear();
    }

    // Enters the path of a package that exists.
    void EnterPackage(PCWSTR pszName = L"solvane.apk")
    {
        WriteTextFile(m_folder.Path() / pszName, "x");
        m_page.SetText(kPath, InFolder(pszName).c_str());
        m_page.TakeButtons();
    }

    LRESULT Next()
    {
        return m_page.Notify(PSN_WIZNEXT);
    }

    void ExpectBoxOfPage(const std::wstring& strText, const std::wstring& strCaption = kCaption,
                         std::source_location where = std::source_location::current())
    {
        ExpectBox(m_page.Window(), strText, strCaption, where);
    }

    // What came after the ping.
    static Lines AfterPing()
    {
        return {Journal().begin() + 2, Journal().end()};
    }

    Lines ConnectRun(int nAttempt) const
    {
        return {StatusLine(L"Connecting to 192.168.1.100:43210 (attempt " + std::to_wstring(nAttempt) + L" of 3)"),
                "sleep 2000", "adb connect 192.168.1.100:43210"};
    }

    Lines InstallRun(int nAttempt, PCWSTR pszName = L"solvane.apk") const
    {
        return {
            StatusLine(std::wstring(L"Installing ") + pszName + L" (attempt " + std::to_wstring(nAttempt) + L" of 3)"),
            "sleep 2000", "adb -s 192.168.1.100:43210 install \"" + Narrow(InFolder(pszName)) + '"'};
    }

    static Lines StopRun()
    {
        return {"sleep 2000", "adb kill-server"};
    }

    AnsweringWatch m_watch;
    AnsweringAdb m_adb;
    PageWindow m_page{206, CInstallApkPage::DialogProc, m_data};
};

Lines Join(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

TEST_F(InstallApkPage, ShowsNextForAFileThatExists)
{
    WriteTextFile(m_folder.Path() / "a.apk", "x");
    m_page.SetText(kPath, InFolder(L"a.ap").c_str());
    EXPECT_EQ(m_page.LastButtons(), kWithoutNext);
    m_page.SetText(kPath, InFolder(L"a.apk").c_str());
    EXPECT_EQ(m_page.LastButtons(), kWithNext);
    m_page.SetText(kPath, L"");
    EXPECT_EQ(m_page.LastButtons(), kWithoutNext);
}

TEST_F(InstallApkPage, ShowsNextWhileTheUserTypesTheLastCharacter)
{
    EnterPackage();
    m_page.SetText(kPath, InFolder(L"solvane.ap").c_str());
    m_page.TakeButtons();
    SendDlgItemMessageW(m_page.Window(), kPath, EM_SETSEL, 1000, 1000);
    m_page.Type(kPath, L"k");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
    m_page.Type(kPath, L"x");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(InstallApkPage, HidesNextForAFolder)
{
    std::filesystem::create_directory(m_folder.Path() / "folder.apk");
    m_page.SetText(kPath, InFolder(L"folder.apk").c_str());
    EXPECT_EQ(m_page.LastButtons(), kWithoutNext);
}

TEST_F(InstallApkPage, NoticesWhenItIsShownAgainThatTheFileIsGone)
{
    EnterPackage();
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
    std::filesystem::remove(m_folder.Path() / "solvane.apk");
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithoutNext});
}

class InstallApkAttributes : public InstallApkPage, public testing::WithParamInterface<std::pair<DWORD, Buttons>>
{
};

TEST_P(InstallApkAttributes, DecideWhetherNextIsShown)
{
    const REPLACED(GetFileAttributesW) attributes(Returns(GetParam().first));
    m_page.SetText(kPath, L"Q:\\any file.apk");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().second});
    EXPECT_EQ(attributes.Arg<0>(), L"Q:\\any file.apk");
}

INSTANTIATE_TEST_SUITE_P(
    Attributes, InstallApkAttributes,
    testing::Values(std::pair(DWORD(FILE_ATTRIBUTE_NORMAL), kWithNext),
                    std::pair(DWORD(FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY), kWithNext),
                    std::pair(DWORD(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), kWithNext),
                    std::pair(DWORD(0), kWithNext), std::pair(DWORD(FILE_ATTRIBUTE_DIRECTORY), kWithoutNext),
                    std::pair(DWORD(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY), kWithoutNext),
                    std::pair(INVALID_FILE_ATTRIBUTES, kWithoutNext)));

TEST_F(InstallApkPage, ReadsNoMoreOfThePathThanAPathHas)
{
    const REPLACED(GetFileAttributesW) attributes(Returns(DWORD(FILE_ATTRIBUTE_NORMAL)));
    const std::wstring strLong = L"C:\\" + std::wstring(200, L'd') + L'\\' + std::wstring(120, L'f');
    m_page.SetText(kPath, strLong.c_str());
    EXPECT_EQ(attributes.Arg<0>(), strLong.substr(0, 259));

    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_adb.Commands()[1], L" -s 192.168.1.100:43210 install \"" + strLong.substr(0, 259) + L'"');
}

TEST_F(InstallApkPage, AnswersAnyOtherCommandWithoutTouchingTheButtons)
{
    for (const int nNotification : {EN_UPDATE, EN_SETFOCUS, EN_KILLFOCUS, EN_MAXTEXT, BN_CLICKED}) {
        EXPECT_EQ(m_page.Command(kPath, nNotification), 0);
    }
    EXPECT_EQ(m_page.Command(kStatus, EN_CHANGE), 0);
    EXPECT_EQ(m_page.Command(IDOK, BN_CLICKED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(InstallApkPage, AnswersTheChangeOfThePath)
{
    EXPECT_EQ(m_page.Command(kPath, EN_CHANGE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(InstallApkPage, AnswersAnyOtherNotificationWithoutDoingAnything)
{
    EnterPackage();
    for (const UINT nCode : {PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET, PSN_APPLY,
                             PSN_HELP, IPN_FIELDCHANGED, NM_CLICK}) {
        EXPECT_EQ(m_page.Notify(nCode), 0);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(Journal(), Lines{});
}

TEST_F(InstallApkPage, LeavesAnyOtherMessageToTheSystem)
{
    for (const UINT nMessage : {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(m_page.Send(nMessage), FALSE);
    }
}

TEST_F(InstallApkPage, ConnectsInstallsAndStopsTheServer)
{
    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal(), Join({{"status \"Pinging 192.168.1.100 (1 of 6)\"", "ping 192.168.1.100"},
                               ConnectRun(1),
                               {"status \"Connected to 192.168.1.100:43210\""},
                               InstallRun(1),
                               {"status \"Installed solvane.apk\""},
                               StopRun()}));
}

TEST_F(InstallApkPage, NamesThePackageByNameAndExtensionAndGivesAdbItsWholePath)
{
    std::filesystem::create_directory(m_folder.Path() / "two words.d");
    const std::wstring strPath = InFolder(L"two words.d\\Solvane Watch v1.2.apk");
    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    m_page.SetText(kPath, strPath.c_str());
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_adb.Commands()[1], L" -s 192.168.1.100:43210 install \"" + strPath + L'"');
    const std::vector<std::wstring> statuses = m_page.TextsOf(kStatus);
    EXPECT_EQ(statuses[statuses.size() - 2], L"Installing Solvane Watch v1.2.apk (attempt 1 of 3)");
    EXPECT_EQ(statuses.back(), L"Installed Solvane Watch v1.2.apk");
}

TEST_F(InstallApkPage, TakesPercentSignsInThePathForWhatTheyAre)
{
    constexpr PCWSTR pszName = L"100%s %d%n%%.apk";
    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    EnterPackage(pszName);
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 {"status \"Connected to 192.168.1.100:43210\""},
                                 InstallRun(1, pszName),
                                 {StatusLine(std::wstring(L"Installed ") + pszName)},
                                 StopRun()}));
}

TEST_F(InstallApkPage, NamesPercentSignsInABox)
{
    m_adb.Prints(kConnected).Prints(FailureNamed("INSTALL_FAILED_ALREADY_EXISTS")).Prints(kStopped);
    EnterPackage(L"100%s.apk");
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"There is a version of 100%s.apk already installed on the device.\n\n"
                    L"Please manually uninstall it and then press Next.");
}

// The system splits no path whose file name is that long. The whole path goes to adb all the same.
TEST_F(InstallApkPage, HasNoNameForAPackageWhosePathCannotBeSplit)
{
    const std::wstring strPath = std::wstring(256, L'n') + L".x";
    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    m_page.SetText(kPath, strPath.c_str());
    EXPECT_EQ(Next(), 0);
    ASSERT_EQ(m_adb.Commands().size(), 3u);
    EXPECT_EQ(m_adb.Commands()[1], L" -s 192.168.1.100:43210 install \"" + strPath + L'"');
    const std::vector<std::wstring> statuses = m_page.TextsOf(kStatus);
    EXPECT_EQ(statuses[statuses.size() - 2], L"Installing  (attempt 1 of 3)");
    EXPECT_EQ(statuses.back(), L"Installed ");
}

TEST_F(InstallApkPage, LeavesTheSharedDataAsItIs)
{
    const CWizardData before = m_data;
    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, &before.m_saWatchAddress, 128), 0);
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

TEST_F(InstallApkPage, RefusesAnAddressThatHasNoText)
{
    m_data.m_saWatchAddress.ss_family = 0;
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"Unable to parse IP address, please report this error to KALVO.");
    EXPECT_EQ(Journal(), Lines{"box \"Unable to parse IP address, please report this error to KALVO.\""});
}

TEST_F(InstallApkPage, StaysWhenTheWatchDoesNotAnswer)
{
    m_watch.FallSilent();
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    const Box box = TakeBox();
    EXPECT_EQ(box.hwndOwner, m_page.Window());
    EXPECT_EQ(box.strCaption, L"Invalid IP address");
    EXPECT_EQ(Journal(), Join({SixPings("192.168.1.100"), {"status \"Unreachable\"", BoxLine(box.strText)}}));
}

TEST_F(InstallApkPage, TakesAWatchThatIsAlreadyConnectedForConnected)
{
    m_adb.Prints(kAlreadyConnected).Prints(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(AfterPing()[3], "status \"Connected to 192.168.1.100:43210\"");
}

TEST_F(InstallApkPage, TriesThreeTimesToConnectAndLeavesTheServerRunning)
{
    m_adb.Prints(kCannotConnect).Prints(kNotAuthenticated).Prints(kCannotConnect);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(kNotConnected, L"Install APK");
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 ConnectRun(2),
                                 ConnectRun(3),
                                 {"status \"Unable to connect to 192.168.1.100:43210\"", BoxLine(kNotConnected)}}));
}

TEST_F(InstallApkPage, TriesAgainAlsoWhenTheWatchDoesNotAuthenticate)
{
    m_adb.Prints(kNotAuthenticated).Prints(kNotAuthenticated).Prints(kNotAuthenticated);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(kNotConnected, L"Install APK");
    EXPECT_EQ(m_page.Text(kStatus), L"Unable to connect to 192.168.1.100:43210");
}

TEST_F(InstallApkPage, ConnectsWithTheLastAttempt)
{
    m_adb.Prints(kNotAuthenticated).Prints(kCannotConnect).Prints(kConnected);
    m_adb.Prints(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), 0);
}

TEST_F(InstallApkPage, TellsAnUnexpectedOutcomeOfTheConnectionAndDoesNotTryAgain)
{
    m_adb.Prints(kUnknown);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    const std::wstring strUnexpected = L"An unexpected error has occurred when connecting to the device:\n\n"
                                       L"Error parsing command output\n\nADB_PARSE_ERROR (6)";
    ExpectBoxOfPage(strUnexpected);
    ExpectBoxOfPage(kNotConnected, L"Install APK");
    EXPECT_EQ(AfterPing(),
              Join({ConnectRun(1),
                    {BoxLine(strUnexpected), "status \"Error parsing command output\"", BoxLine(kNotConnected)}}));
}

TEST_F(InstallApkPage, TellsAnUnexpectedOutcomeOfTheConnectionAlsoAfterAFailedAttempt)
{
    m_adb.Prints(kCannotConnect).PrintsAndHidesItsExitCode(kConnected);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"An unexpected error has occurred when connecting to the device:\n\n"
                    L"CConsoleProcess::GetExitCode() failed\n\nADB_GETEXITCODE_FAILED (4)");
    ExpectBoxOfPage(kNotConnected, L"Install APK");
    EXPECT_EQ(m_page.Text(kStatus), L"CConsoleProcess::GetExitCode() failed");
}

TEST_F(InstallApkPage, StaysWithoutAWordWhenThePathEditIsGone)
{
    m_adb.Prints(kConnected);
    EnterPackage();
    DestroyWindow(m_page.Control(kPath));
    EXPECT_EQ(Next(), -1);
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1), {"status \"Connected to 192.168.1.100:43210\""}}));
}

TEST_F(InstallApkPage, TriesThreeTimesToInstallWithoutABox)
{
    m_adb.Prints(kConnected).Prints(kInstallFailed).Prints(kInstallFailed).Prints(kInstallFailed).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 {"status \"Connected to 192.168.1.100:43210\""},
                                 InstallRun(1),
                                 InstallRun(2),
                                 InstallRun(3),
                                 {"status \"Install failed.\""},
                                 StopRun()}));
}

TEST_F(InstallApkPage, InstallsWithTheLastAttempt)
{
    m_adb.Prints(kConnected).Prints(kOffline).Prints(kNoDevices).Prints(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_page.Text(kStatus), L"Installed solvane.apk");
}

struct Away
{
    PCSTR pszOutput;
    PCWSTR pszStatus;
};

class InstallApkWatchAway : public InstallApkPage, public testing::WithParamInterface<Away>
{
};

TEST_P(InstallApkWatchAway, IsToldOnceAfterThreeAttempts)
{
    const PCSTR pszOutput = GetParam().pszOutput;
    m_adb.Prints(kConnected).Prints(pszOutput).Prints(pszOutput).Prints(pszOutput).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(kTryAgain);
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 {"status \"Connected to 192.168.1.100:43210\""},
                                 InstallRun(1),
                                 InstallRun(2),
                                 InstallRun(3),
                                 {StatusLine(GetParam().pszStatus), BoxLine(kTryAgain)},
                                 StopRun()}));
}

INSTANTIATE_TEST_SUITE_P(OfflineOrNone, InstallApkWatchAway,
                         testing::Values(Away{kOffline, L"adb install - device offline"},
                                         Away{kNoDevices, L"adb install - no devices found"}));

TEST_F(InstallApkPage, JudgesByTheLastAttemptWhetherTheWatchIsAway)
{
    m_adb.Prints(kConnected).Prints(kOffline).Prints(kOffline).Prints(kInstallFailed).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    EXPECT_EQ(m_page.Text(kStatus), L"Install failed.");

    m_adb.Prints(kConnected).Prints(kInstallFailed).Prints(kInstallFailed).Prints(kNoDevices).Prints(kStopped);
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(kTryAgain);
}

struct Refusal
{
    PCSTR pszName;
    std::string strOutput;
    PCWSTR pszStatus;
    PCWSTR pszBox;
};

void PrintTo(const Refusal& refusal, std::ostream* pOut)
{
    *pOut << refusal.pszName;
}

class InstallApkRefusal : public InstallApkPage, public testing::WithParamInterface<Refusal>
{
};

TEST_P(InstallApkRefusal, IsToldAndEndsTheAttempts)
{
    m_adb.Prints(kConnected).Prints(GetParam().strOutput).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(GetParam().pszBox);
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 {"status \"Connected to 192.168.1.100:43210\""},
                                 InstallRun(1),
                                 {BoxLine(GetParam().pszBox), StatusLine(GetParam().pszStatus)},
                                 StopRun()}));
}

TEST_P(InstallApkRefusal, IsToldAlsoAfterAFailedAttempt)
{
    m_adb.Prints(kConnected).Prints(kInstallFailed).Prints(GetParam().strOutput).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(GetParam().pszBox);
    EXPECT_EQ(m_page.Text(kStatus), GetParam().pszStatus);
}

constexpr PCWSTR kAlreadyThere = L"There is a version of solvane.apk already installed on the device.\n\n"
                                 L"Please manually uninstall it and then press Next.";

const Refusal kRefusals[] = {
    {"AlreadyExists", FailureNamed("INSTALL_FAILED_ALREADY_EXISTS"), L"The package is already installed.",
     kAlreadyThere},
    {"UpdateIncompatible", FailureNamed("INSTALL_FAILED_UPDATE_INCOMPATIBLE"),
     L"A previously installed package of the same name has a different signature than the new package(and the old "
     L"package's data was not removed.",
     kAlreadyThere},
    {"InvalidApk", FailureNamed("INSTALL_FAILED_INVALID_APK"), L"The package archive file is invalid.",
     L"The APK file is invalid. Please try downloading it again or ask KALVO for another copy."},
    {"InsufficientStorage", FailureNamed("INSTALL_FAILED_INSUFFICIENT_STORAGE"),
     L"The package manager service found that the device didn't have enough storage space to install the app.",
     L"There is not enough storage space on the device to install the APK.\n\nRemove data (e.g. pictures) or "
     L"applications to free up storage space"},
    {"MoreThanOneDevice", "adb.exe: more than one device/emulator\r\n",
     L"adb install - more than one Android device attached",
     L"More than one Android device is attached (USB, Bluetooth, Wi-Fi) to this computer. Please disconnect all other "
     L"Android devices."},
    {"Stat", "Performing Streamed Install\r\nadb: failed to stat none.apk: No such file or directory\r\n",
     L"adb install - failed to stat",
     L"An unexpected error has occurred when installing the APK:\n\nadb install - failed to stat\n\n"
     L"INSTALL_FAILED_STAT (342)"},
    {"InvalidUri", FailureNamed("INSTALL_FAILED_INVALID_URI"), L"The URI passed in is invalid.",
     L"An unexpected error has occurred when installing the APK:\n\nThe URI passed in is invalid.\n\n"
     L"INSTALL_FAILED_INVALID_URI (304)"},
    {"DuplicatePackage", FailureNamed("INSTALL_FAILED_DUPLICATE_PACKAGE"),
     L"A package is already installed with the same name.",
     L"An unexpected error has occurred when installing the APK:\n\nA package is already installed with the same "
     L"name.\n\nINSTALL_FAILED_DUPLICATE_PACKAGE (306)"},
    {"OlderSdk", FailureNamed("INSTALL_FAILED_OLDER_SDK"),
     L"The new package failed because the current SDK version is older than that required by the package.",
     L"An unexpected error has occurred when installing the APK:\n\nThe new package failed because the current SDK "
     L"version is older than that required by the package.\n\nINSTALL_FAILED_OLDER_SDK (313)"},
    {"Aborted", FailureNamed("INSTALL_FAILED_ABORTED"),
     L"adb install - failed to install - The system aborted the install",
     L"An unexpected error has occurred when installing the APK:\n\nadb install - failed to install - The system "
     L"aborted the install\n\nINSTALL_FAILED_ABORTED (341)"},
    {"NotUnderstood", "something that adb never printed before\r\n", L"Error parsing command output",
     L"An unexpected error has occurred when installing the APK:\n\nError parsing command output\n\n"
     L"ADB_PARSE_ERROR (6)"},
    {"Silence", "", L"Error parsing command output",
     L"An unexpected error has occurred when installing the APK:\n\nError parsing command output\n\n"
     L"ADB_PARSE_ERROR (6)"},
};

INSTANTIATE_TEST_SUITE_P(, InstallApkRefusal, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(InstallApkPage, TellsAReasonThatIsNotKnownTwice)
{
    m_adb.Prints(kConnected).Prints(FailureNamed("INSTALL_FAILED_OF_TOMORROW")).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBox(L"Unknown ADB_EXIT_CODE, please report to KALVO", L"GetFailedToInstallExitCode()");
    ExpectBoxOfPage(L"An unexpected error has occurred when installing the APK:\n\n"
                    L"Unknown error, please report this message to KALVO.\n\nINSTALL_FAILED_KALVO_UNKNOWN_ERROR (301)");
    EXPECT_EQ(m_page.Text(kStatus), L"Unknown error, please report this message to KALVO.");
}

TEST_F(InstallApkPage, DoesNotTrustASuccessWhoseExitCodeCannotBeHad)
{
    m_adb.Prints(kConnected).PrintsAndHidesItsExitCode(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"An unexpected error has occurred when installing the APK:\n\n"
                    L"CConsoleProcess::GetExitCode() failed\n\nADB_GETEXITCODE_FAILED (4)");
    EXPECT_EQ(m_page.Text(kStatus), L"CConsoleProcess::GetExitCode() failed");
}

// Runs of adb that end as the test says, one after the other.
std::vector<ADB_EXIT_CODE> g_outcomes;
std::vector<std::string> g_outputs;
size_t g_nRun = 0;

ADB_EXIT_CODE RunWithOutcome(std::string& strOutput, PWSTR /*pszCommandLine*/)
{
    strOutput = g_outputs.at(g_nRun);
    return g_outcomes.at(g_nRun++);
}

void ScriptRuns(std::vector<std::pair<int, std::string>> runs)
{
    g_nRun = 0;
    g_outcomes.clear();
    g_outputs.clear();
    for (const auto& [nOutcome, strOutput] : runs) {
        g_outcomes.push_back(static_cast<ADB_EXIT_CODE>(nOutcome));
        g_outputs.push_back(strOutput);
    }
}

TEST_F(InstallApkPage, HasWordsForAnOutcomeOfTheConnectionThatIsNotInTheTable)
{
    const Detour detour(&RunAdbCommand, &RunWithOutcome);
    ScriptRuns({{7, ""}});
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"An unexpected error has occurred when connecting to the device:\n\n"
                    L"Unknown ADB Exit Code\n\nUnknown ADB Exit Code (7)");
    ExpectBoxOfPage(kNotConnected, L"Install APK");
    EXPECT_EQ(m_page.Text(kStatus), L"Unknown ADB Exit Code");
    EXPECT_EQ(g_nRun, 1u);
}

TEST_F(InstallApkPage, HasWordsForAnOutcomeOfTheInstallationThatIsNotInTheTable)
{
    const Detour detour(&RunAdbCommand, &RunWithOutcome);
    ScriptRuns({{0, kConnected}, {-5, ""}, {0, kStopped}});
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"An unexpected error has occurred when installing the APK:\n\n"
                    L"Unknown ADB Exit Code\n\nUnknown ADB Exit Code (-5)");
    EXPECT_EQ(m_page.Text(kStatus), L"Unknown ADB Exit Code");
    EXPECT_EQ(g_nRun, 3u);
}

struct Stop
{
    PCSTR pszName;
    PCSTR pszOutput;
    bool bExitCode;
};

void PrintTo(const Stop& stop, std::ostream* pOut)
{
    *pOut << stop.pszName;
}

class InstallApkServerNotStopped : public InstallApkPage, public testing::WithParamInterface<Stop>
{
protected:
    void ScriptStop()
    {
        if (GetParam().bExitCode) {
            m_adb.Prints(GetParam().pszOutput);
        } else {
            m_adb.PrintsAndHidesItsExitCode(GetParam().pszOutput);
        }
    }
};

TEST_P(InstallApkServerNotStopped, KeepsThePageAlthoughThePackageIsInstalled)
{
    m_adb.Prints(kConnected).Prints(kInstalled);
    ScriptStop();
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(kNotStopped, L"CInstallApkPage::OnNotify_PSN_WIZNEXT");
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 {"status \"Connected to 192.168.1.100:43210\""},
                                 InstallRun(1),
                                 {"status \"Installed solvane.apk\""},
                                 StopRun(),
                                 {BoxLine(kNotStopped), "status \"Unable to stop adb service\""}}));
}

TEST_P(InstallApkServerNotStopped, IsToldAlsoAfterAFailedInstallation)
{
    m_adb.Prints(kConnected).Prints(FailureNamed("INSTALL_FAILED_INVALID_APK"));
    ScriptStop();
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    ExpectBoxOfPage(L"The APK file is invalid. Please try downloading it again or ask KALVO for another copy.");
    ExpectBoxOfPage(kNotStopped, L"CInstallApkPage::OnNotify_PSN_WIZNEXT");
    EXPECT_EQ(m_page.Text(kStatus), L"Unable to stop adb service");
}

INSTANTIATE_TEST_SUITE_P(, InstallApkServerNotStopped,
                         testing::Values(Stop{"NoServer", kNoServer, true}, Stop{"NotUnderstood", kUnknown, true},
                                         Stop{"EmptyLine", "\r\n", true}, Stop{"NotJudged", kStopped, false}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(InstallApkPage, BeginsAnewWithEveryNext)
{
    m_adb.Prints(kCannotConnect).Prints(kConnected).Prints(kOffline).Prints(kInstalled).Prints(kNoServer);
    m_adb.Prints(kConnected).Prints(kInstalled).Prints(kStopped);
    EnterPackage();
    EXPECT_EQ(Next(), -1);
    TakeBox();
    Journal().clear();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(AfterPing(), Join({ConnectRun(1),
                                 {"status \"Connected to 192.168.1.100:43210\""},
                                 InstallRun(1),
                                 {"status \"Installed solvane.apk\""},
                                 StopRun()}));
}

} // namespace
