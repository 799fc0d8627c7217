// The launcher and the library with a program of the tests' own.
#include "imports/FailingCalls.h"
#include "imports/Journal.h"
#include "imports/Transcript.h"
#include "launcher/Handle.h"

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
        const CHandle hOutput(CreateFileW(m_szOutput.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
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

    // The same for the tests' own program, with these faults.
    DWORD LaunchProbe(const std::wstring& szArguments, PCWSTR pszFaults = L"")
    {
        SetEnvironmentVariableW(kFaultsVariable, pszFaults);
        return Launch(L"\"" + TestFolder() + L"probe.exe\" " + szArguments);
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
    EXPECT_EQ(LaunchProbe(L"start \"exit 0 one argument\""), 0u);
    EXPECT_EQ(LaunchProbe(L"write " + m_szFile), 0u);
    EXPECT_EQ(LaunchProbe(L"read " + m_szFile), 2u);
    EXPECT_EQ(ReadAll(m_szJournal), "\n> probe exit 0 one argument\n12");
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

TEST_F(Launcher, SaysInOneLineThatAProgramCannotBeStarted)
{
    EXPECT_EQ(Launch(L"no-such-program.exe"), kLauncherFailed);
    EXPECT_EQ(Output(), "launcher: cannot start no-such-program.exe (error 2)\r\n");
}

TEST_F(Launcher, SaysHowItIsUsed)
{
    EXPECT_EQ(Launch(L""), kLauncherFailed);
    EXPECT_EQ(Output(), "usage: launcher PROGRAM [ARGUMENT...]\r\n");
}

TEST_F(Launcher, RefusesFaultsThatMakeNoSense)
{
    EXPECT_EQ(LaunchProbe(L"exit 3", L"WriteFile=fail:1;WriteFile=explode"), kLauncherFailed);
    EXPECT_EQ(Output(), "launcher: KALVO_FAULTS makes no sense at \"WriteFile=explode\"\r\n");
    EXPECT_EQ(LaunchProbe(L"exit 3", L"NoSuchFunction=fail:1"), kLauncherFailed);
    EXPECT_EQ(Output(), "launcher: KALVO_FAULTS makes no sense at \"NoSuchFunction\"\r\n");
}

TEST_F(Launcher, RefusesAFaultThatCanNeverStrike)
{
    EXPECT_EQ(LaunchProbe(L"exit 3", L"WriteFile=fail:1;WSAPoll=fail:1"), kLauncherFailed);
    EXPECT_NE(Output().find("; does it call every function that KALVO_FAULTS names? (error 1114)\r\n"),
              std::string::npos)
        << Output();
}

TEST_F(Launcher, LetsCallsFailAndAnswersForTheRoute)
{
    const std::wstring szWrite = L"write " + m_szFile;
    EXPECT_EQ(LaunchProbe(szWrite), 0u);
    EXPECT_EQ(ReadAll(m_szFile), "12");
    EXPECT_EQ(LaunchProbe(szWrite, L"CreateFileW#-file.txt=fail:32"), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(LaunchProbe(szWrite, L"CreateFileW#-other.txt=fail:32"), 0u);
    EXPECT_EQ(LaunchProbe(szWrite, L"WriteFile@3=fail:5;WriteFile@2#-file.txt=null:112"), DWORD{ERROR_DISK_FULL});
    EXPECT_EQ(ReadAll(m_szFile), "1");
    EXPECT_EQ(LaunchProbe(L"start-com", L"CoInitializeEx=fail:0x80004005"), static_cast<DWORD>(E_FAIL));
    EXPECT_EQ(LaunchProbe(L"route"), DWORD{NO_ERROR});
    EXPECT_EQ(LaunchProbe(L"route", L"GetBestRoute2=ret:1168"), DWORD{ERROR_NOT_FOUND});
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

TEST_F(Launcher, DoesNotEndWhatTheProgramStarted)
{
    const CHandle hEnded(CreateEventW(nullptr, TRUE, FALSE, L"launcher has ended"));
    const CHandle hAnswer(CreateEventW(nullptr, TRUE, FALSE, L"still there"));
    const CHandle hLauncher = Start(L"\"" + TestFolder() + L"probe.exe\" start \"linger " + m_szFile + L"\"");
    EXPECT_EQ(ReadOnceItHolds(m_szFile, "12"), "12");
    TerminateProcess(hLauncher.get(), 0);
    EXPECT_EQ(WaitForSingleObject(hLauncher.get(), 10000), WAIT_OBJECT_0);
    SetEvent(hEnded.get());
    EXPECT_EQ(WaitForSingleObject(hAnswer.get(), 10000), WAIT_OBJECT_0) << "nobody is left to answer";
}

TEST_F(Launcher, KeepsAJournalOfTheEnd)
{
    SetEnvironmentVariableW(kJournalVariable, m_szJournal.c_str());
    EXPECT_EQ(LaunchProbe(L"tear-down", L"CoInitializeEx=ret:1"), 1812u);
    EXPECT_EQ(ReadAll(m_szJournal), "fault CoInitializeEx\n"
                                    "SetForegroundWindow title=\"\"\n"
                                    "CoUninitialize\n"
                                    "WSACleanup\n"
                                    "ReleaseMutex\n"
                                    "CloseHandle mutex\n"
                                    "ExitProcess code=1812\n"
                                    "ended code=1812\n");
}
