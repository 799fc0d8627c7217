// The page that installs the package.

#include "adb/AdbCommands.h"
#include "app/ground/KalvoApkInstaller.h"

#include "tests/kit/TemporaryFolder.h"
#include "tests/unit/wizard/Detour.h"
#include "tests/unit/wizard/PageTest.h"

#include <cstring>

using namespace kit;

namespace {

constexpr int kStatus = 1021;
constexpr int kPath = 1038;

constexpr PCSTR kCaption = "ADB Install";
constexpr PCSTR kTryAgain = "Unable to install the APK, please press Next to try again";
constexpr PCSTR kAlreadyThere = "There is a version of solvane.apk already installed on the device.\n\n"
                                "Please manually uninstall it and then press Next.";

constexpr PCSTR kInvalid = "The APK file is invalid. Please try downloading it again or ask KALVO for another copy.";

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

// What adb prints when the watch names this reason.
AdbRun FailureNamed(const std::string& strName)
{
    return ("Performing Streamed Install\r\nadb: failed to install C:\\solvane.apk: Failure [" + strName +
            ": because]\r\n")
        .c_str();
}

// What the journal has of each step.

Lines Connecting(int nAttempt)
{
    return {"status \"Connecting to 192.168.1.100:43210 (" + Attempt(nAttempt) + ")\"", "sleep 2000",
            "adb connect 192.168.1.100:43210"};
}

Lines Connected()
{
    return Status("Connected to 192.168.1.100:43210");
}

Lines NotConnected()
{
    return Told("Install APK", "Unable to connect to watch.  Please try again, if that does not work, then:\n"
                               "Steps to revoke debugging authorizations:\n"
                               "1. Open the watch's Settings.\n"
                               "2. Scroll down and tap Developer options.\n"
                               "3. Scroll down and tap Revoke debugging authorizations.\n"
                               "4. Tap the blue button to confirm you are sure.\n");
}

Lines Installing(int nAttempt, const std::string& strName = "solvane.apk",
                 const std::string& strPath = "C:\\packages\\solvane.apk")
{
    return {"status \"Installing " + strName + " (" + Attempt(nAttempt) + ")\"", "sleep 2000",
            "adb -s 192.168.1.100:43210 install \"" + strPath + '"'};
}

Lines Stopping()
{
    return {"sleep 2000", "adb kill-server"};
}

// A box that tells an outcome with its name and number.
Lines Unexpected(const std::string& strStep, const std::string& strMessage, const std::string& strOutcome)
{
    return Told(kCaption,
                "An unexpected error has occurred when " + strStep + ":\n\n" + strMessage + "\n\n" + strOutcome);
}

class NewInstallApkPage : public PageTest
{
protected:
    NewInstallApkPage() : PageTest(kInstallApkPage)
    {
        SetProgramFolder(m_folder.Path().wstring() + L'\\');
    }

    ~NewInstallApkPage() override
    {
        SetProgramFolder(L"");
    }

    static void SetProgramFolder(const std::wstring& strFolder)
    {
        wcscpy_s(CKalvoApkInstaller::GetInstance().m_szFolderPath, strFolder.c_str());
    }

    std::wstring MakeFile(PCWSTR pszName) const
    {
        WriteTextFile(m_folder.Path() / pszName, "x");
        return (m_folder.Path() / pszName).wstring();
    }

    TemporaryFolder m_folder;
};

TEST_F(NewInstallApkPage, StartsWithThePackageBesideTheProgram)
{
    MakeFile(L"readme.txt");
    const std::wstring strPath = MakeFile(L"Solvane Watch.1.2.apk");
    PageWindow& page = Open();
    EXPECT_EQ(page.Text(kPath), strPath);
    EXPECT_EQ(page.LastButtons(), kWithNext);
}

TEST_F(NewInstallApkPage, StartsEmptyWithoutAPackageBesideTheProgram)
{
    MakeFile(L"readme.txt");
    const REPLACED(FindClose) close(Never());
    PageWindow& page = Open();
    EXPECT_EQ(page.Text(kPath), L"");
    EXPECT_TRUE(page.TextsOf(kPath).empty());
    EXPECT_EQ(page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(NewInstallApkPage, StartsWithTheFirstPackageThatTheSearchFinds)
{
    SetProgramFolder(L"C:\\Program Files\\KALVO\\");
    const REPLACED(FindFirstFileW) search([](PCWSTR, WIN32_FIND_DATAW* pFound) {
        std::memset(pFound, 0xCC, sizeof(*pFound));
        wcscpy_s(pFound->cFileName, L"second in the alphabet.apk");
        return reinterpret_cast<HANDLE>(0xF1D);
    });
    const REPLACED(FindNextFileW) next(Never());
    const REPLACED(FindClose) close(Returns(TRUE));
    EXPECT_EQ(Open().Text(kPath), L"C:\\Program Files\\KALVO\\second in the alphabet.apk");
    EXPECT_EQ(search.Arg<0>(), L"C:\\Program Files\\KALVO\\*.apk");
    EXPECT_EQ(close.Arg<0>(), reinterpret_cast<HANDLE>(0xF1D));
    EXPECT_EQ(Journal(), (Lines{"FindFirstFileW", "FindClose"}));
}

TEST_F(NewInstallApkPage, DoesNotSearchWithoutAPathEdit)
{
    const REPLACED(FindFirstFileW) search(Never());
    PageWindow& page = Open({kPath});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{kWithoutNext});
}

// The page, with the path of a package that nobody has looked for yet.
class InstallApkPage : public NewInstallApkPage
{
protected:
    InstallApkPage()
    {
        Open().SetText(kPath, L"C:\\packages\\solvane.apk");
        m_page->TakeButtons();
        Journal().clear();
    }

    // Next with an installation between a connection and a stop that go well.
    void ExpectInstallation(LRESULT nAnswer, std::vector<AdbRun> runs, std::vector<Lines> course,
                            std::source_location where = std::source_location::current())
    {
        runs.insert(runs.begin(), kConnected);
        runs.emplace_back(kStopped);
        course.insert(course.begin(), {Ping(), Connecting(1), Connected()});
        course.push_back(Stopping());
        ExpectNext(nAnswer, runs, course, where);
    }

    // Next installs the package with this path, of which this is the name.
    void ExpectInstalled(const std::wstring& strPath, const std::string& strName,
                         std::source_location where = std::source_location::current())
    {
        m_page->SetText(kPath, strPath.c_str());
        ExpectInstallation(0, {kInstalled},
                           {Installing(1, strName, Narrow(strPath.substr(0, 259))), Status("Installed " + strName)},
                           where);
    }
};

TEST_F(InstallApkPage, ShowsNextForAFileThatExists)
{
    const std::wstring strPath = MakeFile(L"a.apk");
    m_page->SetText(kPath, strPath.substr(0, strPath.size() - 1).c_str());
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
    SendDlgItemMessageW(m_page->Window(), kPath, EM_SETSEL, 1000, 1000);
    m_page->Type(kPath, L"k");
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithNext});
    m_page->Type(kPath, L"x");
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithoutNext});
    m_page->SetText(kPath, L"");
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
}

TEST_F(InstallApkPage, HidesNextForAFolder)
{
    m_page->SetText(kPath, m_folder.Path().c_str());
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
}

TEST_F(InstallApkPage, NoticesWhenItIsShownAgainThatTheFileIsGone)
{
    const std::wstring strPath = MakeFile(L"solvane.apk");
    m_page->SetText(kPath, strPath.c_str());
    m_page->TakeButtons();
    EXPECT_EQ(m_page->Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithNext});
    std::filesystem::remove(strPath);
    EXPECT_EQ(m_page->Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(InstallApkPage, ShowsNextForAnyAttributesButThoseOfAFolder)
{
    const std::pair<DWORD, Buttons> rows[] = {{FILE_ATTRIBUTE_NORMAL, kWithNext},
                                              {FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY, kWithNext},
                                              {FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM, kWithNext},
                                              {0, kWithNext},
                                              {FILE_ATTRIBUTE_DIRECTORY, kWithoutNext},
                                              {FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY, kWithoutNext},
                                              {INVALID_FILE_ATTRIBUTES, kWithoutNext}};
    for (const auto& [dwAttributes, buttons] : rows) {
        SCOPED_TRACE(dwAttributes);
        const REPLACED(GetFileAttributesW) attributes(Returns(dwAttributes));
        EXPECT_EQ(m_page->Command(kPath, EN_CHANGE), 0);
        EXPECT_EQ(m_page->TakeButtons(), ButtonsList{buttons});
        EXPECT_EQ(attributes.Arg<0>(), L"C:\\packages\\solvane.apk");
    }
}

TEST_F(InstallApkPage, ReadsNoMoreOfThePathThanAPathHas)
{
    const REPLACED(GetFileAttributesW) attributes(Returns(DWORD(FILE_ATTRIBUTE_NORMAL)));
    const std::wstring strLong = L"C:\\" + std::wstring(200, L'd') + L'\\' + std::wstring(120, L'f');
    ExpectInstalled(strLong, std::string(55, 'f'));
    EXPECT_EQ(attributes.Arg<0>(), strLong.substr(0, 259));
}

TEST_F(InstallApkPage, AnswersAnyOtherCommandWithoutTouchingTheButtons)
{
    for (const int nNotification : {EN_UPDATE, EN_SETFOCUS, EN_KILLFOCUS, EN_MAXTEXT, BN_CLICKED}) {
        EXPECT_EQ(m_page->Command(kPath, nNotification), 0);
    }
    EXPECT_EQ(m_page->Command(kStatus, EN_CHANGE), 0);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{});
}

TEST_F(InstallApkPage, ConnectsInstallsAndStopsTheServer)
{
    ExpectNext(0, {kConnected, kInstalled, kStopped},
               {Ping(), Connecting(1), Connected(), Installing(1), Status("Installed solvane.apk"), Stopping()});
    EXPECT_TRUE(IsAddressUntouched());
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

TEST_F(InstallApkPage, NamesThePackageByNameAndExtensionAndGivesAdbItsWholePath)
{
    ExpectInstalled(L"C:\\two words.d\\Solvane Watch v1.2.apk", "Solvane Watch v1.2.apk");
}

TEST_F(InstallApkPage, TakesPercentSignsInThePathForWhatTheyAre)
{
    ExpectInstalled(L"C:\\100%d\\100%s %d%n%%.apk", "100%s %d%n%%.apk");

    m_page->SetText(kPath, L"C:\\100%s.apk");
    ExpectInstallation(-1, {FailureNamed("INSTALL_FAILED_ALREADY_EXISTS")},
                       {Installing(1, "100%s.apk", "C:\\100%s.apk"),
                        Told(kCaption, "There is a version of 100%s.apk already installed on the device.\n\n"
                                       "Please manually uninstall it and then press Next."),
                        Status("The package is already installed.")});
}

// The system splits no path whose file name is that long. The whole path goes to adb all the same.
TEST_F(InstallApkPage, HasNoNameForAPackageWhosePathCannotBeSplit)
{
    ExpectInstalled(std::wstring(256, L'n') + L".x", "");
}

TEST_F(InstallApkPage, RefusesAnAddressThatHasNoText)
{
    m_data.m_saWatchAddress.ss_family = 0;
    ExpectNext(-1, {}, {Told(kCaption, "Unable to parse IP address, please report this error to KALVO.")});
}

TEST_F(InstallApkPage, StaysWhenTheWatchDoesNotAnswer)
{
    m_watch.m_echoes = {kSilence};
    ExpectNext(-1, {}, {NoAnswer()});
}

TEST_F(InstallApkPage, TakesAWatchThatIsAlreadyConnectedForConnected)
{
    ExpectNext(0, {kAlreadyConnected, kInstalled, kStopped},
               {Ping(), Connecting(1), Connected(), Installing(1), Status("Installed solvane.apk"), Stopping()});
}

TEST_F(InstallApkPage, TriesThreeTimesToConnectAndLeavesTheServerRunning)
{
    for (const PCSTR pszOutput : {kCannotConnect, kNotAuthenticated}) {
        SCOPED_TRACE(pszOutput);
        ExpectNext(-1, {pszOutput, kNotAuthenticated, pszOutput},
                   {Ping(), Connecting(1), Connecting(2), Connecting(3),
                    Status("Unable to connect to 192.168.1.100:43210"), NotConnected()});
    }
}

TEST_F(InstallApkPage, TellsAnUnexpectedOutcomeOfTheConnectionAndDoesNotTryAgain)
{
    const std::string strStep = "connecting to the device";
    ExpectNext(-1, {kUnknown},
               {Ping(), Connecting(1), Unexpected(strStep, "Error parsing command output", "ADB_PARSE_ERROR (6)"),
                Status("Error parsing command output"), NotConnected()});

    const std::string strMessage = "CConsoleProcess::GetExitCode() failed";
    ExpectNext(-1, {kCannotConnect, {kConnected, false}},
               {Ping(), Connecting(1), Connecting(2), Unexpected(strStep, strMessage, "ADB_GETEXITCODE_FAILED (4)"),
                Status(strMessage), NotConnected()});
}

TEST_F(InstallApkPage, HasWordsForAnOutcomeOfTheConnectionThatIsNotInTheTable)
{
    const Detour detour(&Connect, +[](PCWSTR, std::string*) { return static_cast<ADB_EXIT_CODE>(7); });
    ExpectNext(-1, {},
               {Ping(),
                {Connecting(1).front()},
                Unexpected("connecting to the device", "Unknown ADB Exit Code", "Unknown ADB Exit Code (7)"),
                Status("Unknown ADB Exit Code"),
                NotConnected()});
}

TEST_F(InstallApkPage, StaysWithoutAWordWhenThePathEditIsGone)
{
    DestroyWindow(m_page->Control(kPath));
    ExpectNext(-1, {kConnected}, {Ping(), Connecting(1), Connected()});
}

// Whatever the attempts before the last came to.
TEST_F(InstallApkPage, TriesThreeTimesToInstallWithoutABox)
{
    for (const PCSTR pszOutput : {kInstallFailed, kOffline}) {
        SCOPED_TRACE(pszOutput);
        ExpectInstallation(-1, {pszOutput, pszOutput, kInstallFailed},
                           {Installing(1), Installing(2), Installing(3), Status("Install failed.")});
    }
}

TEST_F(InstallApkPage, SucceedsWithTheLastAttempts)
{
    ExpectNext(0, {kNotAuthenticated, kCannotConnect, kConnected, kOffline, kNoDevices, kInstalled, kStopped},
               {Ping(), Connecting(1), Connecting(2), Connecting(3), Connected(), Installing(1), Installing(2),
                Installing(3), Status("Installed solvane.apk"), Stopping()});
}

TEST_F(InstallApkPage, TellsOnceAfterThreeAttemptsThatTheWatchIsAway)
{
    const std::pair<PCSTR, PCSTR> rows[] = {{kOffline, "adb install - device offline"},
                                            {kNoDevices, "adb install - no devices found"}};
    for (const auto& [pszOutput, pszStatus] : rows) {
        const std::vector<Lines> course = {Installing(1), Installing(2), Installing(3), Status(pszStatus),
                                           Told(kCaption, kTryAgain)};
        ExpectInstallation(-1, {pszOutput, pszOutput, pszOutput}, course);
        ExpectInstallation(-1, {kInstallFailed, kInstallFailed, pszOutput}, course);
    }
}

// A reason for which the package is not installed, and the page's own box about it, or the outcome that the box names.
struct Refusal
{
    PCSTR pszName;
    AdbRun run;
    PCSTR pszStatus;
    PCSTR pszBox = nullptr;
    PCSTR pszOutcome = nullptr;
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
    const Refusal& row = GetParam();
    const Lines told = row.pszBox != nullptr ? Told(kCaption, row.pszBox)
                                             : Unexpected("installing the APK", row.pszStatus, row.pszOutcome);
    ExpectInstallation(-1, {row.run}, {Installing(1), told, Status(row.pszStatus)});
    ExpectInstallation(-1, {kInstallFailed, row.run}, {Installing(1), Installing(2), told, Status(row.pszStatus)});
}

const Refusal kRefusals[] = {
    {"AlreadyExists", FailureNamed("INSTALL_FAILED_ALREADY_EXISTS"), "The package is already installed.",
     kAlreadyThere},
    {"UpdateIncompatible", FailureNamed("INSTALL_FAILED_UPDATE_INCOMPATIBLE"),
     "A previously installed package of the same name has a different signature than the new package(and the old "
     "package's data was not removed.",
     kAlreadyThere},
    {"InvalidApk", FailureNamed("INSTALL_FAILED_INVALID_APK"), "The package archive file is invalid.", kInvalid},
    {"InsufficientStorage", FailureNamed("INSTALL_FAILED_INSUFFICIENT_STORAGE"),
     "The package manager service found that the device didn't have enough storage space to install the app.",
     "There is not enough storage space on the device to install the APK.\n\nRemove data (e.g. pictures) or "
     "applications to free up storage space"},
    {"MoreThanOneDevice", "adb.exe: more than one device/emulator\r\n",
     "adb install - more than one Android device attached",
     "More than one Android device is attached (USB, Bluetooth, Wi-Fi) to this computer. Please disconnect all other "
     "Android devices."},
    {"Stat", "Performing Streamed Install\r\nadb: failed to stat none.apk: No such file or directory\r\n",
     "adb install - failed to stat", nullptr, "INSTALL_FAILED_STAT (342)"},
    {"InvalidUri", FailureNamed("INSTALL_FAILED_INVALID_URI"), "The URI passed in is invalid.", nullptr,
     "INSTALL_FAILED_INVALID_URI (304)"},
    {"DuplicatePackage", FailureNamed("INSTALL_FAILED_DUPLICATE_PACKAGE"),
     "A package is already installed with the same name.", nullptr, "INSTALL_FAILED_DUPLICATE_PACKAGE (306)"},
    {"OlderSdk", FailureNamed("INSTALL_FAILED_OLDER_SDK"),
     "The new package failed because the current SDK version is older than that required by the package.", nullptr,
     "INSTALL_FAILED_OLDER_SDK (313)"},
    {"Aborted", FailureNamed("INSTALL_FAILED_ABORTED"),
     "adb install - failed to install - The system aborted the install", nullptr, "INSTALL_FAILED_ABORTED (341)"},
    {"NotUnderstood", kUnknown, "Error parsing command output", nullptr, "ADB_PARSE_ERROR (6)"},
    {"Silence", "", "Error parsing command output", nullptr, "ADB_PARSE_ERROR (6)"},
    // Not trusted: its exit code cannot be had.
    {"UnjudgedSuccess",
     {kInstalled, false},
     "CConsoleProcess::GetExitCode() failed",
     nullptr,
     "ADB_GETEXITCODE_FAILED (4)"},
};

INSTANTIATE_TEST_SUITE_P(, InstallApkRefusal, testing::ValuesIn(kRefusals), kByName);

TEST_F(InstallApkPage, TellsAReasonThatIsNotKnownTwice)
{
    const std::string strMessage = "Unknown error, please report this message to KALVO.";
    ExpectInstallation(
        -1, {FailureNamed("INSTALL_FAILED_OF_TOMORROW")},
        {Installing(1), ToldByNobody("GetFailedToInstallExitCode()", "Unknown ADB_EXIT_CODE, please report to KALVO"),
         Unexpected("installing the APK", strMessage, "INSTALL_FAILED_KALVO_UNKNOWN_ERROR (301)"), Status(strMessage)});
}

TEST_F(InstallApkPage, HasWordsForAnOutcomeOfTheInstallationThatIsNotInTheTable)
{
    const Detour detour(&Install, +[](PCWSTR, PCWSTR, std::string*) { return static_cast<ADB_EXIT_CODE>(-5); });
    ExpectNext(-1, {kConnected, kStopped},
               {Ping(),
                Connecting(1),
                Connected(),
                {Installing(1).front()},
                Unexpected("installing the APK", "Unknown ADB Exit Code", "Unknown ADB Exit Code (-5)"),
                Status("Unknown ADB Exit Code"),
                Stopping()});
}

TEST_F(InstallApkPage, StaysWhenTheServerIsNotStopped)
{
    const Lines notStopped = Told("CInstallApkPage::OnNotify_PSN_WIZNEXT", kNotStopped);
    for (const AdbRun& stop : std::vector<AdbRun>{kNoServer, kUnknown, "\r\n", {kStopped, false}}) {
        SCOPED_TRACE(stop.strOutput);
        ExpectNext(-1, {kConnected, kInstalled, stop},
                   {Ping(), Connecting(1), Connected(), Installing(1), Status("Installed solvane.apk"), Stopping(),
                    notStopped, Status("Unable to stop adb service")});
        ExpectNext(-1, {kConnected, FailureNamed("INSTALL_FAILED_INVALID_APK"), stop},
                   {Ping(), Connecting(1), Connected(), Installing(1), Told(kCaption, kInvalid),
                    Status("The package archive file is invalid."), Stopping(), notStopped,
                    Status("Unable to stop adb service")});
    }
    // And begins anew with every Next.
    ExpectInstallation(0, {kInstalled}, {Installing(1), Status("Installed solvane.apk")});
}

} // namespace
