// Running a console program: a real one, and with every step of it answered.

#include "adb/ConsoleProcess.h"

#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"
#include "tools/PlatformTools.h"

#include <map>

using namespace kit;

namespace {

// How many handles this process has open, of the kinds that a run makes.
using Handles = std::map<std::string, int>;

Handles OpenHandles()
{
    Handles handles;
    // They are multiples of four, and low ones while there are few.
    for (ULONG_PTR n = 4; n < 0x2000; n += 4) {
        const auto h = reinterpret_cast<HANDLE>(n);
        DWORD dwFlags = 0;
        if (GetHandleInformation(h, &dwFlags)) {
            // Each of these fails for a handle of another kind.
            handles["pipe"] += GetFileType(h) == FILE_TYPE_PIPE ? 1 : 0;
            handles["process"] += GetProcessId(h) != 0 ? 1 : 0;
            handles["thread"] += GetThreadId(h) != 0 ? 1 : 0;
        }
    }
    return handles;
}

bool IsInheritable(HANDLE h)
{
    DWORD dwFlags = 0;
    EXPECT_TRUE(GetHandleInformation(h, &dwFlags));
    return (dwFlags & HANDLE_FLAG_INHERIT) != 0;
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

    static void ExpectOutput(std::wstring strArguments, const std::string& strExpected)
    {
        std::string strOutput = "from before";
        EXPECT_EQ(RunAdbCommand(strOutput, strArguments.data()), ADB_SUCCESS) << Narrow(strArguments);
        EXPECT_EQ(strOutput, strExpected) << Narrow(strArguments);
    }
};

// Nothing, NULs, both streams in order; whatever its status. It gets the arguments and no program name, and shows no
// window.
TEST_F(RealProcess, IsReadByteForByteForAllThatItsStatusMatters)
{
    ExpectOutput(L" nothing", "");
    ExpectOutput(L" arguments pair \"a b\"", " arguments pair \"a b\"\narguments\npair\na b\n");
    ExpectOutput(L" nuls", std::string("a\0b\0\0c\n\0", 8));
    ExpectOutput(L" both", "out1\r\nerr1\r\nout2\r\nerr2\r\nout3\r\nerr3\r\n");
    ExpectOutput(L" exit 1", "Success\r\n");
    ExpectOutput(L" exit 259", "Success\r\n");
    ExpectOutput(L" console", "no window");
}

TEST_F(RealProcess, MayPrintMoreThanAReadTakes)
{
    for (const size_t nCount : {1023u, 1024u, 1025u, 100000u}) {
        std::string strExpected;
        for (size_t n = 0; n < nCount; ++n) {
            strExpected += static_cast<char>(n % 251);
        }
        ExpectOutput(L" bytes " + std::to_wstring(nCount), strExpected);
    }
}

TEST_F(RealProcess, IsReadUntilTheLastHolderOfThePipeIsDone)
{
    ExpectOutput(L" hand-on", "early\nlate\n");
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
    ExpectOutput(L" live-on \"end of child\"", "done\n");
    EXPECT_EQ(dwExitCode, static_cast<DWORD>(STILL_ACTIVE));
    EXPECT_EQ(WaitForSingleObject(hChild, 0), static_cast<DWORD>(WAIT_TIMEOUT));
    SetEvent(hEnd);
    EXPECT_EQ(WaitForSingleObject(hChild, INFINITE), WAIT_OBJECT_0);
    CloseHandle(hChild);
    CloseHandle(hEnd);
}

TEST_F(RealProcess, InheritsOnlyTheWriteEnd)
{
    HANDLE hRead = nullptr;
    const REPLACED(CreatePipe) createPipe([&](HANDLE* phRead, auto... args) {
        const BOOL bResult = createPipe.Next(phRead, args...);
        hRead = *phRead;
        return bResult;
    });
    const REPLACED(CreateProcessW) createProcess([&](auto... args) {
        EXPECT_FALSE(IsInheritable(hRead));
        EXPECT_TRUE(IsInheritable(std::get<STARTUPINFOW*>(std::tuple(args...))->hStdOutput));
        return createProcess.Next(args...);
    });
    ExpectOutput(L" nothing", "");
}

TEST_F(RealProcess, LeavesTheReadEndOfEachRunOpenAndNothingElse)
{
    Handles expected = OpenHandles();
    for (int nRuns = 1; nRuns <= 3; ++nRuns) {
        ExpectOutput(L" exit 1", "Success\r\n");
        ++expected["pipe"];
        EXPECT_EQ(OpenHandles(), expected) << "after " << nRuns << " runs";
    }
}

TEST_F(RealProcess, ThatIsMissingEndsThisOne)
{
    wcscpy_s(CPlatformTools::GetInstance().m_szAdbExePath, L"C:\\no such folder\\adb.exe");
    EXPECT_EQ(ExitCodeOf([] { ExpectOutput(L" nothing", ""); }), static_cast<UINT>(ERROR_PATH_NOT_FOUND));
    ExpectBox(L"CreateProcess(lpApplicationName, lpCommandLine, ...) failed with error 3: " + SystemDescription(3),
              L"Error");
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
        : m_createPipe(Maybe([this](HANDLE* phRead, HANDLE* phWrite, SECURITY_ATTRIBUTES* pSa, DWORD) {
              m_sa = *pSa;
              *phRead = hReadEnd;
              *phWrite = hWriteEnd;
              return TRUE;
          })),
          m_createProcess(Maybe([this](PCWSTR, PWSTR pszCommandLine, auto, auto, BOOL, DWORD, void*, PCWSTR,
                                       STARTUPINFOW* pSi, PROCESS_INFORMATION* pPi) {
              m_strCommandLine = pszCommandLine;
              m_si = *pSi;
              m_piBefore = *pPi;
              *pPi = {hProcess, hThread, 1, 1};
              return TRUE;
          })),
          m_read(Maybe([this](HANDLE, void* pBuffer, DWORD, DWORD* pcbRead, OVERLAPPED*) {
              const Read read = m_reads.at(m_nRead++);
              memcpy(pBuffer, read.strBytes.data(), read.strBytes.size());
              // A call that fails need not say how much it read.
              if (read.bResult || !read.strBytes.empty()) {
                  *pcbRead = static_cast<DWORD>(read.strBytes.size());
              }
              SetLastError(read.dwError);
              return read.bResult;
          })),
          m_close(Quietly([this](HANDLE h) -> BOOL {
              Note("close " + NameOf(h));
              return h != nullptr && std::ranges::count(m_uncloseable, h) == 0;
          }))
    {
        CPlatformTools::GetInstance() = {};
        wcscpy_s(CPlatformTools::GetInstance().m_szAdbExePath, L"C:\\tools\\adb.exe");
    }

    ADB_EXIT_CODE RunAdb()
    {
        m_nRead = 0;
        return RunAdbCommand(m_strOutput, m_szArguments);
    }

    // This process ends with the last error, after that step and a report of its call.
    void ExpectEnd(UINT nExitCode, const std::string& strStep, const std::wstring& strCall)
    {
        EXPECT_EQ(ExitCodeOf([this] { RunAdb(); }), nExitCode);
        ExpectBox(strCall + L" failed with error " + std::to_wstring(nExitCode) + L": " + SystemDescription(nExitCode),
                  L"Error");
        EXPECT_EQ(Journal().end()[-3], strStep);
    }

    std::string m_strOutput = "from before";
    WCHAR m_szArguments[16] = L" kill-server";
    std::wstring m_strCommandLine;
    SECURITY_ATTRIBUTES m_sa = {};
    STARTUPINFOW m_si = {};
    PROCESS_INFORMATION m_piBefore = {};
    std::vector<Read> m_reads = {{FALSE, "", ERROR_BROKEN_PIPE}};
    size_t m_nRead = 0;
    std::vector<HANDLE> m_uncloseable;

    REPLACED(CreatePipe) m_createPipe;
    REPLACED(SetHandleInformation) m_setInformation { Maybe(Returns(TRUE)) };
    REPLACED(CreateProcessW) m_createProcess;
    REPLACED(ReadFile) m_read;
    REPLACED(GetExitCodeProcess) m_exitCode { Maybe(Returns(TRUE)) };
    REPLACED(CloseHandle) m_close;
};

// The read end is left open.
TEST_F(ProcessSteps, AreTakenInOrderAfterAPauseForEachRunAnew)
{
    for (int n = 0; n < 2; ++n) {
        Journal().clear();
        EXPECT_EQ(RunAdb(), ADB_SUCCESS);
        EXPECT_EQ(Journal(),
                  (Lines{"sleep 2000", "CreatePipe", "SetHandleInformation", "CreateProcessW", "close write end",
                         "close null", "ReadFile", "GetExitCodeProcess", "close thread", "close process"}));
    }
}

// Only the write end passes to the child. The pipe has the system's own buffer.
TEST_F(ProcessSteps, TheProcessGetsThePipeTwiceAndNoInput)
{
    RunAdb();
    EXPECT_EQ(m_sa.nLength, 24u);
    EXPECT_EQ(m_sa.lpSecurityDescriptor, nullptr);
    EXPECT_EQ(m_sa.bInheritHandle, TRUE);
    EXPECT_EQ(m_createPipe.Arg<3>(), 0u);
    EXPECT_EQ(m_setInformation.Calls(), 1u);
    EXPECT_EQ(m_setInformation.Arguments(), std::tuple(hReadEnd, DWORD(HANDLE_FLAG_INHERIT), 0u));
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

// It may write into its command line.
TEST_F(ProcessSteps, TheProcessIsTheDeployedAdbHidden)
{
    RunAdb();
    EXPECT_EQ(m_createProcess.Arguments(), std::tuple(L"C:\\tools\\adb.exe", m_szArguments, nullptr, nullptr, TRUE,
                                                      0x08000000u, nullptr, L"(null)", kAny, kAny));
    EXPECT_EQ(m_strCommandLine, L" kill-server");
}

TEST_F(ProcessSteps, OutputIsReadInPiecesOf1024Bytes)
{
    m_reads = {{TRUE, std::string(1024, 'a'), 0}, {TRUE, "b", 0}, {FALSE, "", ERROR_BROKEN_PIPE}};
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, std::string(1024, 'a') + "b");
    EXPECT_EQ(m_read.Arguments(), std::tuple(hReadEnd, kAny, 1024u, kAny, nullptr));
}

TEST_F(ProcessSteps, AFailedReadIsTriedAgainUntilThePipeIsBroken)
{
    m_reads = {{FALSE, "", ERROR_NO_DATA},
               {TRUE, "a", 0},
               {TRUE, "", 0},
               {TRUE, "", ERROR_BROKEN_PIPE},
               {FALSE, "partly", ERROR_MORE_DATA},
               {FALSE, "", ERROR_INVALID_HANDLE},
               {FALSE, "", ERROR_SUCCESS},
               {FALSE, "", ERROR_HANDLE_EOF},
               {TRUE, "b", 0},
               {FALSE, "", ERROR_BROKEN_PIPE}};
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
    EXPECT_EQ(m_strOutput, "apartlyb");
    EXPECT_EQ(m_read.Calls(), 10u);
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

// The other one is closed all the same.
TEST_F(ProcessSteps, AThreadOrAProcessThatCannotBeClosedFailsTheRun)
{
    for (const std::vector<HANDLE>& handles :
         std::vector<std::vector<HANDLE>>{{hThread}, {hProcess}, {hThread, hProcess}}) {
        SCOPED_TRACE(NameOf(handles.front()) + " to " + NameOf(handles.back()));
        m_uncloseable = handles;
        EXPECT_EQ(RunAdb(), ADB_CLOSE_FAILED);
        EXPECT_EQ(Journal().back(), "close process");
    }
    m_uncloseable = {hWriteEnd};
    EXPECT_EQ(RunAdb(), ADB_SUCCESS);
}

TEST_F(ProcessSteps, OneThatFailsBeforeThereIsAChildEndsThisProcess)
{
    {
        const REPLACED(CreatePipe) createPipe(Returns(FALSE, ERROR_NOT_ENOUGH_MEMORY));
        ExpectEnd(8, "CreatePipe", L"CreatePipe(&m_hStandardOutputRead, &m_hStandardOutputWrite, &m_sa, 0)");
    }
    {
        const REPLACED(SetHandleInformation) setInformation(Returns(FALSE, ERROR_INVALID_HANDLE));
        ExpectEnd(6, "SetHandleInformation", L"SetHandleInformation(m_hStandardOutputRead, HANDLE_FLAG_INHERIT, 0)");
    }
    const REPLACED(CreateProcessW) createProcess(Returns(FALSE, ERROR_FILE_NOT_FOUND));
    ExpectEnd(2, "CreateProcessW", L"CreateProcess(lpApplicationName, lpCommandLine, ...)");
}

} // namespace
