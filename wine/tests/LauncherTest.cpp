// The launcher and the library with a program of the tests' own.
#include "imports/FailingCalls.h"
#include "imports/Journal.h"
#include "imports/Transcript.h"
#include "launcher/CommandLine.h"
#include "launcher/Handle.h"

#include <shellapi.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string_view>

namespace {

std::wstring TestFolder()
{
    WCHAR szPath[MAX_PATH];
    GetModuleFileNameW(nullptr, szPath, ARRAYSIZE(szPath));
    const std::wstring szProgram = szPath;
    return szProgram.substr(0, szProgram.find_last_of(L'\\') + 1);
}

std::wstring TemporaryFile(PCWSTR pszName)
{
    WCHAR szFolder[MAX_PATH];
    GetTempPathW(ARRAYSIZE(szFolder), szFolder);
    return szFolder + std::to_wstring(GetCurrentProcessId()) + pszName;
}

std::string ReadAll(const std::wstring& szFile)
{
    char szNarrow[MAX_PATH];
    WideCharToMultiByte(CP_ACP, 0, szFile.c_str(), -1, szNarrow, MAX_PATH, nullptr, nullptr);
    std::stringstream content;
    content << std::ifstream(szNarrow, std::ios::binary).rdbuf();
    return content.str();
}

constexpr DWORD kLauncherFailed = 125;

} // namespace

class Launcher : public testing::Test
{
protected:
    void TearDown() override
    {
        SetEnvironmentVariableW(kFaultsVariable, nullptr);
        SetEnvironmentVariableW(kJournalVariable, nullptr);
        SetEnvironmentVariableW(kTranscriptVariable, nullptr);
        DeleteFileW(m_szOutput.c_str());
        DeleteFileW(m_szJournal.c_str());
        DeleteFileW(m_szFile.c_str());
    }

    // Starts the launcher with these arguments.
    CHandle Start(const std::wstring& szArguments)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
        // A program that is not waited for may still have the file of an earlier launch.
        const CHandle hOutput(CreateFileW(m_szOutput.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = startup.hStdError = hOutput.get();
        PROCESS_INFORMATION process = {};
        std::wstring szLine = L"\"" + TestFolder() + L"..\\launcher.exe\" " + szArguments;
        EXPECT_TRUE(
            CreateProcessW(nullptr, szLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
            << GetLastError();
        const CHandle hThread(process.hThread);
        return CHandle(process.hProcess);
    }

    // Runs the launcher with these arguments; returns its exit code.
    DWORD Launch(const std::wstring& szArguments)
    {
        const CHandle hProcess = Start(szArguments);
        DWORD dwExitCode = 0;
        EXPECT_EQ(WaitForSingleObject(hProcess.get(), 30000), WAIT_OBJECT_0);
        GetExitCodeProcess(hProcess.get(), &dwExitCode);
        return dwExitCode;
    }

    DWORD LaunchProbe(const std::wstring& szArguments)
    {
        return Launch(L"\"" + TestFolder() + L"probe.exe\" " + szArguments);
    }

    DWORD LaunchProbe(PCWSTR pszFaults, const std::wstring& szArguments)
    {
        SetEnvironmentVariableW(kFaultsVariable, pszFaults);
        return LaunchProbe(szArguments);
    }

    // What a file holds once it holds that; at last whatever it holds.
    static std::string ReadOnceItHolds(const std::wstring& szFile, std::string_view expected)
    {
        for (int n = 0; n < 100 && ReadAll(szFile) != expected; ++n) {
            Sleep(50);
        }
        return ReadAll(szFile);
    }

    std::string Output() const
    {
        return ReadAll(m_szOutput);
    }

    const std::wstring m_szOutput = TemporaryFile(L"-output.txt");
    const std::wstring m_szJournal = TemporaryFile(L"-journal.txt");
    const std::wstring m_szFile = TemporaryFile(L"-file.txt");
};

TEST_F(Launcher, ReturnsTheProgramsExitCode)
{
    EXPECT_EQ(LaunchProbe(L"exit 0"), 0u);
    EXPECT_EQ(LaunchProbe(L"exit 1812"), 1812u);
    EXPECT_EQ(LaunchProbe(L"exit -1"), 0xFFFFFFFF);
    EXPECT_EQ(Output(), "");
}

TEST_F(Launcher, TranscribesWhatIsStartedAndWhatIsRead)
{
    SetEnvironmentVariableW(kTranscriptVariable, m_szJournal.c_str());
    EXPECT_EQ(LaunchProbe(L"start first"), 0u);
    EXPECT_EQ(ReadAll(m_szJournal), "\n> probe exit 0 first\n");
    EXPECT_EQ(LaunchProbe(L"write " + m_szFile), 0u);
    EXPECT_EQ(LaunchProbe(L"read " + m_szFile), 2u);
    EXPECT_EQ(ReadAll(m_szJournal), "\n> probe exit 0 first\n12");
}

TEST_F(Launcher, TellsOfACrashWhereItWasAndWhoCalled)
{
    EXPECT_EQ(LaunchProbe(L"crash"), static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION));
    const std::string output = Output();
    for (const char* pszPart : {"crash: exception 0xC0000005 at probe.exe+0x", "crash: called from probe.exe+0x",
                                "crash: called from kernel32.dll+0x"}) {
        EXPECT_NE(output.find(pszPart), std::string::npos) << pszPart << " in\n" << output;
    }
}

TEST_F(Launcher, NeedNotWait)
{
    const CHandle hEvent(CreateEventW(nullptr, TRUE, FALSE, L"launcher has ended"));
    EXPECT_EQ(
        Launch(L"--no-wait -- \"" + TestFolder() + L"probe.exe\" write \"" + m_szFile + L"\" \"launcher has ended\""),
        0u);
    SetEvent(hEvent.get());
    EXPECT_EQ(ReadOnceItHolds(m_szFile, "12"), "12") << "the program did not run";
}

TEST_F(Launcher, SaysInOneLineThatAProgramCannotBeStarted)
{
    EXPECT_EQ(Launch(L"no-such-program.exe"), kLauncherFailed);
    EXPECT_EQ(Output(), "launcher: cannot start no-such-program.exe (error 2)\r\n");
}

TEST_F(Launcher, SaysHowItIsUsed)
{
    for (const PCWSTR pszArguments : {L"", L"--no-wait", L"--unknown probe.exe", L"--"}) {
        EXPECT_EQ(Launch(pszArguments), kLauncherFailed);
        EXPECT_EQ(Output(), "usage: launcher [--no-wait] [--] PROGRAM [ARGUMENT...]\r\n");
    }
}

TEST_F(Launcher, RefusesFaultsThatMakeNoSense)
{
    EXPECT_EQ(LaunchProbe(L"WriteFile=fail:1;WriteFile=explode", L"exit 3"), kLauncherFailed);
    EXPECT_EQ(Output(), "launcher: KALVO_FAULTS makes no sense at \"WriteFile=explode\"\r\n");
    EXPECT_EQ(LaunchProbe(L"NoSuchFunction=fail:1", L"exit 3"), kLauncherFailed);
    EXPECT_EQ(Output(), "launcher: KALVO_FAULTS makes no sense at \"NoSuchFunction\"\r\n");
}

TEST_F(Launcher, RefusesAFaultThatCanNeverStrike)
{
    EXPECT_EQ(LaunchProbe(L"WriteFile=fail:1;WSAPoll=fail:1", L"exit 3"), kLauncherFailed);
    EXPECT_NE(Output().find("; does it call every function that KALVO_FAULTS names? (error 1114)\r\n"),
              std::string::npos)
        << Output();
}

TEST_F(Launcher, AnswersForTheRoute)
{
    EXPECT_EQ(LaunchProbe(L"route"), DWORD{NO_ERROR});
}

TEST_F(Launcher, LetsCallsFail)
{
    const std::wstring szWrite = L"write \"" + m_szFile + L"\"";
    EXPECT_EQ(LaunchProbe(L"", szWrite), 0u);
    EXPECT_EQ(ReadAll(m_szFile), "12");
    EXPECT_EQ(LaunchProbe(L"CreateFileW#-file.txt=fail:32", szWrite), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(LaunchProbe(L"CreateFileW#-other.txt=fail:32", szWrite), 0u);
    EXPECT_EQ(LaunchProbe(L"WriteFile@2#-file.txt=fail:112", szWrite), DWORD{ERROR_DISK_FULL});
    EXPECT_EQ(ReadAll(m_szFile), "1");
    EXPECT_EQ(LaunchProbe(L"CreateProcessW#second=fail:5", L"start first"), 0u);
    EXPECT_EQ(LaunchProbe(L"CreateProcessW#second=fail:5", L"start second"), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(LaunchProbe(L"CoInitializeEx=fail:0x80004005", L"start-com"), static_cast<DWORD>(E_FAIL));
    EXPECT_EQ(LaunchProbe(L"GetBestRoute2=ret:1168", L"route"), DWORD{ERROR_NOT_FOUND});
}

TEST_F(Launcher, LetsACallHangUntilTheProgramIsEnded)
{
    SetEnvironmentVariableW(kFaultsVariable, L"WriteFile@2#-file.txt=hang");
    SetEnvironmentVariableW(kJournalVariable, m_szJournal.c_str());
    const CHandle hLauncher = Start(L"\"" + TestFolder() + L"probe.exe\" write \"" + m_szFile + L"\"");
    EXPECT_EQ(ReadOnceItHolds(m_szJournal, "fault WriteFile\n"), "fault WriteFile\n");
    EXPECT_EQ(WaitForSingleObject(hLauncher.get(), 500), DWORD{WAIT_TIMEOUT});
    TerminateProcess(hLauncher.get(), 0);
    // The program, which ends with the launcher, shares the file with nobody while it runs.
    EXPECT_EQ(ReadOnceItHolds(m_szFile, "1"), "1");
}

TEST_F(Launcher, KeepsAJournalOfTheEnd)
{
    SetEnvironmentVariableW(kJournalVariable, m_szJournal.c_str());
    EXPECT_EQ(LaunchProbe(L"CoInitializeEx=ret:1", L"tear-down"), 1812u);
    EXPECT_EQ(ReadAll(m_szJournal), "fault CoInitializeEx\n"
                                    "SetForegroundWindow title=\"\"\n"
                                    "CoUninitialize\n"
                                    "WSACleanup\n"
                                    "ReleaseMutex\n"
                                    "CloseHandle mutex\n"
                                    "ExitProcess code=1812\n"
                                    "ended code=1812\n");
}

class Arguments : public testing::TestWithParam<std::vector<std::wstring>>
{
};

TEST_P(Arguments, ArriveAsTheyWere)
{
    std::vector<std::wstring> given = GetParam();
    std::vector<wchar_t*> pointers;
    for (std::wstring& szArgument : given) {
        pointers.push_back(szArgument.data());
    }
    int nCount = 0;
    PWSTR* const ppszGot = CommandLineToArgvW(JoinArguments(pointers).c_str(), &nCount);
    EXPECT_EQ(std::vector<std::wstring>(ppszGot, ppszGot + nCount), GetParam());
    LocalFree(ppszGot);
}

INSTANTIATE_TEST_SUITE_P(All, Arguments,
                         testing::Values(std::vector<std::wstring>{L"C:\\Program Files\\a.exe", L"plain", L""},
                                         std::vector<std::wstring>{L"a.exe", L"with blank", L"tab\there"},
                                         std::vector<std::wstring>{L"a.exe", L"quote\"inside", L"\"quoted\""},
                                         std::vector<std::wstring>{L"a.exe", L"back\\slash", L"at end\\", L"\\\\\""},
                                         std::vector<std::wstring>{L"a.exe", L"both \\\"", L"\\", L"end \\\\"}));
