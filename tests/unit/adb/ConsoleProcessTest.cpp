// Running a console program: a real one, and with every step of it answered.

#include "adb/ConsoleProcess.h"

#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"
#include "tools/PlatformTools.h"

using namespace kit;

namespace {

// Runs a program with an argument text as adb is run.
ADB_EXIT_CODE RunProgram(std::string& strOutput, std::wstring strArguments)
{
    return RunAdbCommand(strOutput, strArguments.data());
}

std::string SystemDescription(DWORD dwCode)
{
    WCHAR szText[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText, 512,
                   nullptr);
    return Narrow(szText);
}

// A real program in adb's place.
class RealProcess : public Test
{
protected:
    RealProcess()
    {
        CPlatformTools::GetInstance() = {};
        // The environment names it where this test runs on another computer than the one that built it.
        WCHAR szChild[MAX_PATH] = {};
        const bool bNamed = GetEnvironmentVariableW(L"KALVO_CHILD", szChild, MAX_PATH) != 0;
        const std::filesystem::path child = std::filesystem::absolute(bNamed ? szChild : CHILD_EXE).make_preferred();
        wcscpy_s(CPlatformTools::GetInstance().m_szAdbExePath, child.c_str());
    }

    std::string m_strOutput = "from before";
};

TEST_F(RealProcess, ThatPrintsNothingLeavesNoOutput)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" nothing"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "");
}

TEST_F(RealProcess, GetsTheArgumentsAndNoProgramName)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" arguments pair \"a b\""), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, " arguments pair \"a b\"\narguments\npair\na b\n");
}

TEST_F(RealProcess, MayPrintMoreThanAReadTakes)
{
    for (const size_t nCount : {1023u, 1024u, 1025u, 100000u}) {
        std::string strExpected;
        for (size_t n = 0; n < nCount; ++n) {
            strExpected += static_cast<char>(n % 251);
        }
        EXPECT_EQ(RunProgram(m_strOutput, L" bytes " + std::to_wstring(nCount)), ADB_SUCCESS);
        EXPECT_TRUE(m_strOutput == strExpected) << nCount;
    }
}

TEST_F(RealProcess, MayPrintNuls)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" nuls"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, std::string("a\0b\0\0c\n\0", 8));
}

TEST_F(RealProcess, PrintsOnBothStreamsInOrder)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" both"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "out1\r\nerr1\r\nout2\r\nerr2\r\nout3\r\nerr3\r\n");
}

TEST_F(RealProcess, MayFailForAllThatItsStatusMatters)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" exit 1"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "Success\r\n");
    EXPECT_EQ(RunProgram(m_strOutput, L" exit 259"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "Success\r\n");
}

TEST_F(RealProcess, IsReadUntilTheLastHolderOfThePipeIsDone)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" hand-on"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "early\nlate\n");
}

// The end of its output is the end of the run. Nothing waits for the process itself.
TEST_F(RealProcess, ThatClosesItsOutputAndLivesOnIsLeftToItself)
{
    const HANDLE hEnd = CreateEventW(nullptr, TRUE, FALSE, L"end of child");
    HANDLE hChild = nullptr;
    DWORD dwExitCode = 0;
    const REPLACED(GetExitCodeProcess) exitCode([&](HANDLE h, DWORD* pdw) {
        DuplicateHandle(GetCurrentProcess(), h, GetCurrentProcess(), &hChild, 0, FALSE, DUPLICATE_SAME_ACCESS);
        const BOOL bResult = exitCode.Next(h, pdw);
        dwExitCode = *pdw;
        return bResult;
    });
    EXPECT_EQ(RunProgram(m_strOutput, L" live-on \"end of child\""), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "done\n");
    EXPECT_EQ(dwExitCode, static_cast<DWORD>(STILL_ACTIVE));
    EXPECT_EQ(WaitForSingleObject(hChild, 0), static_cast<DWORD>(WAIT_TIMEOUT));
    SetEvent(hEnd);
    EXPECT_EQ(WaitForSingleObject(hChild, INFINITE), WAIT_OBJECT_0);
    CloseHandle(hChild);
    CloseHandle(hEnd);
}

TEST_F(RealProcess, ShowsNoWindow)
{
    EXPECT_EQ(RunProgram(m_strOutput, L" console"), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "no window");
}

TEST_F(RealProcess, InheritsOnlyTheWriteEnd)
{
    DWORD dwReadFlags = 0;
    DWORD dwWriteFlags = 0;
    const REPLACED(CreateProcessW)
        createProcess([&](PCWSTR pszApplication, PWSTR pszCommandLine, SECURITY_ATTRIBUTES* pProcess,
                          SECURITY_ATTRIBUTES* pThread, BOOL bInherit, DWORD dwCreation, void* pEnvironment,
                          PCWSTR pszFolder, STARTUPINFOW* pSi, PROCESS_INFORMATION* pPi) {
            GetHandleInformation(pSi->hStdOutput, &dwWriteFlags);
            return createProcess.Next(pszApplication, pszCommandLine, pProcess, pThread, bInherit, dwCreation,
                                      pEnvironment, pszFolder, pSi, pPi);
        });
    const REPLACED(SetHandleInformation) setInformation([&](HANDLE h, DWORD dwMask, DWORD dwNew) {
        const BOOL bResult = setInformation.Next(h, dwMask, dwNew);
        GetHandleInformation(h, &dwReadFlags);
        return bResult;
    });
    EXPECT_EQ(RunProgram(m_strOutput, L" nothing"), ADB_SUCCESS);
    EXPECT_EQ(dwReadFlags & HANDLE_FLAG_INHERIT, 0u);
    EXPECT_EQ(dwWriteFlags & HANDLE_FLAG_INHERIT, static_cast<DWORD>(HANDLE_FLAG_INHERIT));
}

TEST_F(RealProcess, LeavesItsReadEndOpenAndNothingElse)
{
    HANDLE hRead = nullptr;
    HANDLE hWrite = nullptr;
    PROCESS_INFORMATION pi = {};
    {
        const REPLACED(CreatePipe) createPipe([&](HANDLE* phRead, HANDLE* phWrite, SECURITY_ATTRIBUTES* pSa, DWORD cb) {
            const BOOL bResult = createPipe.Next(phRead, phWrite, pSa, cb);
            hRead = *phRead;
            hWrite = *phWrite;
            return bResult;
        });
        const REPLACED(GetExitCodeProcess) exitCode([&](HANDLE h, DWORD* pdw) {
            pi.hProcess = h;
            return exitCode.Next(h, pdw);
        });
        EXPECT_EQ(RunProgram(m_strOutput, L" nothing"), ADB_SUCCESS);
    }
    DWORD dwFlags = 0;
    EXPECT_TRUE(GetHandleInformation(hRead, &dwFlags));
    EXPECT_FALSE(GetHandleInformation(hWrite, &dwFlags));
    EXPECT_FALSE(GetHandleInformation(pi.hProcess, &dwFlags));
    CloseHandle(hRead);
}

TEST_F(RealProcess, ThatIsMissingEndsThisOne)
{
    wcscpy_s(CPlatformTools::GetInstance().m_szAdbExePath, L"C:\\no such folder\\adb.exe");
    EXPECT_EQ(ExitCodeOf([this] { RunProgram(m_strOutput, L" nothing"); }), static_cast<UINT>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(Narrow(TakeBox().strText),
              "CreateProcess(lpApplicationName, lpCommandLine, ...) failed with error 3: " + SystemDescription(3));
}

const HANDLE hReadEnd = reinterpret_cast<HANDLE>(0xA1);
const HANDLE hWriteEnd = reinterpret_cast<HANDLE>(0xA3);
const HANDLE hProcess = reinterpret_cast<HANDLE>(0xA5);
const HANDLE hThread = reinterpret_cast<HANDLE>(0xA7);

std::string NameOf(HANDLE h)
{
    return h == hReadEnd    ? "read end"
           : h == hWriteEnd ? "write end"
           : h == hProcess  ? "process"
           : h == hThread   ? "thread"
           : h == nullptr   ? "null"
                            : "something else";
}

// No process at all: each step answers well until a test says otherwise.
class ProcessSteps : public Test
{
protected:
    struct Read
    {
        BOOL bResult;
        std::string strBytes;
        DWORD dwError;
    };

    ProcessSteps()
        : m_createPipe([this](HANDLE* phRead, HANDLE* phWrite, SECURITY_ATTRIBUTES* pSa, DWORD) {
              m_sa = *pSa;
              *phRead = hReadEnd;
              *phWrite = hWriteEnd;
              return TRUE;
          }),
          m_createProcess([this](PCWSTR, PWSTR pszCommandLine, auto, auto, BOOL, DWORD, void*, PCWSTR,
                                 STARTUPINFOW* pSi, PROCESS_INFORMATION* pPi) {
              m_strCommandLine = pszCommandLine;
              m_si = *pSi;
              m_piBefore = *pPi;
              *pPi = {hProcess, hThread, 1, 1};
              return TRUE;
          }),
          m_read([this](HANDLE, void* pBuffer, DWORD, DWORD* pcbRead, OVERLAPPED*) {
              const Read read = m_reads.at(m_nRead++);
              memcpy(pBuffer, read.strBytes.data(), read.strBytes.size());
              // A call that fails need not say how much it read.
              if (read.bResult || !read.strBytes.empty()) {
                  *pcbRead = static_cast<DWORD>(read.strBytes.size());
              }
              SetLastError(read.dwError);
              return read.bResult;
          }),
          m_close([this](HANDLE h) -> BOOL {
              Note("close " + NameOf(h));
              return h != nullptr && h != m_hUncloseable && !m_bNothingCloses;
          })
    {
        CPlatformTools::GetInstance() = {};
        wcscpy_s(CPlatformTools::GetInstance().m_szAdbExePath, L"C:\\tools\\adb.exe");
        m_createPipe.Optional();
        m_setInformation.Optional();
        m_createProcess.Optional();
        m_read.Optional();
        m_exitCode.Optional();
        m_close.Optional().Unnoted();
    }

    ADB_EXIT_CODE RunAdb()
    {
        return RunProgram(m_strOutput, L" kill-server");
    }

    std::string m_strOutput = "from before";
    std::wstring m_strCommandLine;
    SECURITY_ATTRIBUTES m_sa = {};
    STARTUPINFOW m_si = {};
    PROCESS_INFORMATION m_piBefore = {};
    std::vector<Read> m_reads = {{FALSE, "", ERROR_BROKEN_PIPE}};
    size_t m_nRead = 0;
    HANDLE m_hUncloseable = nullptr;
    bool m_bNothingCloses = false;

    REPLACED(CreatePipe) m_createPipe;
    REPLACED(SetHandleInformation) m_setInformation { Returns(TRUE) };
    REPLACED(CreateProcessW) m_createProcess;
    REPLACED(ReadFile) m_read;
    REPLACED(GetExitCodeProcess) m_exitCode { Returns(TRUE) };
    REPLACED(CloseHandle) m_close;
};

TEST_F(ProcessSteps, AreTakenInOrderAfterAPause)
{
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(Journal(), (Lines{"sleep 2000", "CreatePipe", "SetHandleInformation", "CreateProcessW", "close write end",
                                "close null", "ReadFile", "GetExitCodeProcess", "close thread", "close process"}));
    EXPECT_EQ(Sleeps(), std::vector<DWORD>{2000});
}

TEST_F(ProcessSteps, ThePipeIsMadeInheritableWithTheSystemsBuffer)
{
    RunAdb();
    EXPECT_EQ(m_sa.nLength, 24u);
    EXPECT_EQ(m_sa.lpSecurityDescriptor, nullptr);
    EXPECT_EQ(m_sa.bInheritHandle, TRUE);
    EXPECT_EQ(m_createPipe.Arg<3>(), 0u);
}

TEST_F(ProcessSteps, TheReadEndIsKeptFromTheChild)
{
    RunAdb();
    EXPECT_EQ(m_setInformation.Calls(), 1u);
    EXPECT_EQ(m_setInformation.Arg<0>(), hReadEnd);
    EXPECT_EQ(m_setInformation.Arg<1>(), static_cast<DWORD>(HANDLE_FLAG_INHERIT));
    EXPECT_EQ(m_setInformation.Arg<2>(), 0u);
}

TEST_F(ProcessSteps, TheProcessIsTheDeployedAdbHidden)
{
    RunAdb();
    EXPECT_EQ(m_createProcess.Arg<0>(), L"C:\\tools\\adb.exe");
    EXPECT_EQ(m_strCommandLine, L" kill-server");
    EXPECT_EQ(m_createProcess.Arg<2>(), nullptr);
    EXPECT_EQ(m_createProcess.Arg<3>(), nullptr);
    EXPECT_EQ(m_createProcess.Arg<4>(), TRUE);
    EXPECT_EQ(m_createProcess.Arg<5>(), 0x08000000u);
    EXPECT_EQ(m_createProcess.Arg<6>(), nullptr);
    EXPECT_EQ(m_createProcess.Arg<7>(), L"(null)");
}

TEST_F(ProcessSteps, TheProcessMayWriteIntoItsCommandLine)
{
    WCHAR szArguments[] = L" pair";
    RunAdbCommand(m_strOutput, szArguments);
    EXPECT_EQ(m_createProcess.Arg<1>(), szArguments);
}

TEST_F(ProcessSteps, TheProcessGetsThePipeTwiceAndNoInput)
{
    RunAdb();
    STARTUPINFOW wanted = {};
    wanted.cb = 104;
    wanted.dwFlags = 0x100;
    wanted.hStdInput = nullptr;
    wanted.hStdOutput = hWriteEnd;
    wanted.hStdError = hWriteEnd;
    EXPECT_EQ(memcmp(&m_si, &wanted, sizeof(wanted)), 0);
    EXPECT_EQ(m_piBefore.hProcess, nullptr);
    EXPECT_EQ(m_piBefore.hThread, nullptr);
}

TEST_F(ProcessSteps, OutputIsReadInPiecesOf1024Bytes)
{
    m_reads = {{TRUE, std::string(1024, 'a'), 0}, {TRUE, "b", 0}, {FALSE, "", ERROR_BROKEN_PIPE}};
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, std::string(1024, 'a') + "b");
    EXPECT_EQ(m_read.Arg<0>(), hReadEnd);
    EXPECT_EQ(m_read.Arg<2>(), 1024u);
    EXPECT_EQ(m_read.Arg<4>(), nullptr);
}

TEST_F(ProcessSteps, AnEmptyReadIsNotTheEnd)
{
    m_reads = {{TRUE, "", 0}, {TRUE, "a", 0}, {TRUE, "", ERROR_BROKEN_PIPE}, {TRUE, "b", 0}, {FALSE, "", 109}};
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "ab");
}

TEST_F(ProcessSteps, AFailedReadIsTriedAgainUntilThePipeIsBroken)
{
    m_reads = {{FALSE, "", ERROR_NO_DATA},
               {TRUE, "a", 0},
               {FALSE, "partly", ERROR_MORE_DATA},
               {FALSE, "", ERROR_INVALID_HANDLE},
               {FALSE, "", ERROR_SUCCESS},
               {FALSE, "", ERROR_HANDLE_EOF},
               {TRUE, "b", 0},
               {FALSE, "", ERROR_BROKEN_PIPE}};
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "apartlyb");
    EXPECT_EQ(m_read.Calls(), 8u);
}

TEST_F(ProcessSteps, TheExitCodeIsThatOfTheProcessAndDoesNotMatter)
{
    const REPLACED(GetExitCodeProcess) exitCode([](HANDLE, DWORD* pdwExitCode) {
        *pdwExitCode = 1;
        return TRUE;
    });
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(exitCode.Arg<0>(), hProcess);
}

TEST_F(ProcessSteps, WithoutExitCodeTheProcessStaysOpen)
{
    const REPLACED(GetExitCodeProcess) exitCode(Returns(FALSE, ERROR_ACCESS_DENIED));
    m_reads = {{TRUE, "Success\r\n", 0}, {FALSE, "", ERROR_BROKEN_PIPE}};
    EXPECT_EQ(RunAdb(), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(m_strOutput, "Success\r\n");
    EXPECT_EQ(Journal().back(), "GetExitCodeProcess");
}

TEST_F(ProcessSteps, AThreadThatCannotBeClosedFailsTheRunButTheProcessIsClosedToo)
{
    m_hUncloseable = hThread;
    EXPECT_EQ(RunAdb(), ADB_CLOSE_FAILED);
    EXPECT_EQ(Journal().back(), "close process");
}

TEST_F(ProcessSteps, AProcessThatCannotBeClosedFailsTheRun)
{
    m_hUncloseable = hProcess;
    EXPECT_EQ(RunAdb(), ADB_CLOSE_FAILED);
}

TEST_F(ProcessSteps, NothingThatClosesFailsTheRun)
{
    m_bNothingCloses = true;
    EXPECT_EQ(RunAdb(), ADB_CLOSE_FAILED);
    EXPECT_EQ(Journal().back(), "close process");
}

TEST_F(ProcessSteps, AWriteEndThatCannotBeClosedIsNotMinded)
{
    m_hUncloseable = hWriteEnd;
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
}

TEST_F(ProcessSteps, EachRunMakesAPipeOfItsOwn)
{
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    m_nRead = 0;
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(m_createPipe.Calls(), 2u);
    EXPECT_EQ(Sleeps(), (std::vector<DWORD>{2000, 2000}));
    for (const std::string& strLine : Journal()) {
        EXPECT_NE(strLine, "close read end");
    }
}

TEST_F(ProcessSteps, WithoutPipeThisProcessEnds)
{
    const REPLACED(CreatePipe) createPipe(Returns(FALSE, ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(ExitCodeOf([this] { RunAdb(); }), 8u);
    const Box box = TakeBox();
    EXPECT_EQ(Narrow(box.strText),
              "CreatePipe(&m_hStandardOutputRead, &m_hStandardOutputWrite, &m_sa, 0) failed with error 8: " +
                  SystemDescription(8));
    EXPECT_EQ(box.strCaption, L"Error");
    EXPECT_EQ(m_setInformation.Calls(), 0u);
}

TEST_F(ProcessSteps, WithAnInheritableReadEndThisProcessEnds)
{
    const REPLACED(SetHandleInformation) setInformation(Returns(FALSE, ERROR_INVALID_HANDLE));
    EXPECT_EQ(ExitCodeOf([this] { RunAdb(); }), 6u);
    EXPECT_EQ(Narrow(TakeBox().strText),
              "SetHandleInformation(m_hStandardOutputRead, HANDLE_FLAG_INHERIT, 0) failed with error 6: " +
                  SystemDescription(6));
    EXPECT_EQ(m_createProcess.Calls(), 0u);
}

TEST_F(ProcessSteps, WithoutChildThisProcessEnds)
{
    const REPLACED(CreateProcessW) createProcess(Returns(FALSE, ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(ExitCodeOf([this] { RunAdb(); }), 2u);
    EXPECT_EQ(Narrow(TakeBox().strText),
              "CreateProcess(lpApplicationName, lpCommandLine, ...) failed with error 2: " + SystemDescription(2));
    EXPECT_EQ(m_read.Calls(), 0u);
}

} // namespace
