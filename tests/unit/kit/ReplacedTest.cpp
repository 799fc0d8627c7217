// The kit's own promises.

#include "tests/kit/Test.h"

#include <gtest/gtest-spi.h>

#include <winsock2.h>

using namespace kit;

namespace {

class KitTest : public Test
{
};

TEST_F(KitTest, GivesTheScriptedResultAndALastErrorOnlyWhenTold)
{
    REPLACED(GetTempPathW) path(InTurn(Returns(DWORD(0), ERROR_ACCESS_DENIED), Returns(DWORD(4))));
    SetLastError(1);
    EXPECT_EQ(GetTempPathW(0, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    SetLastError(7);
    EXPECT_EQ(GetTempPathW(0, nullptr), 4u);
    EXPECT_EQ(GetLastError(), 7u);
}

TEST_F(KitTest, KeepsArgumentsOfEveryCall)
{
    REPLACED(SetEnvironmentVariableW) set(Returns(TRUE));
    WCHAR szName[] = L"A";
    SetEnvironmentVariableW(szName, L"x");
    szName[0] = L'B';
    SetEnvironmentVariableW(szName, nullptr);
    SetEnvironmentVariableW(MAKEINTRESOURCEW(5), nullptr);
    EXPECT_EQ(set.Calls(), 3u);
    EXPECT_EQ(set.Arguments(), std::tuple(L"A", L"x"));
    EXPECT_EQ(set.Arguments(1), std::tuple(kAny, L"(null)"));
    EXPECT_NE(set.Arguments(1), std::tuple(L"A", kAny));
    EXPECT_EQ(set.Arg<0>(2), L"#5");
    EXPECT_NONFATAL_FAILURE(set.Arg<0>(3), "SetEnvironmentVariableW was called only 3 times");
}

TEST_F(KitTest, AnswersInTurnAndPassesOn)
{
    REPLACED(GetTickCount) tick(InTurn(Returns(DWORD(1)), PassOn(), [] { return DWORD(3); }));
    EXPECT_EQ(GetTickCount(), 1u);
    EXPECT_GT(GetTickCount(), 3u);
    EXPECT_EQ(GetTickCount(), 3u);
    EXPECT_NONFATAL_FAILURE(EXPECT_EQ(GetTickCount(), 3u), "GetTickCount was called more than 3 times");
}

TEST_F(KitTest, FailsOverAReplacementThatNobodyCalled)
{
    EXPECT_NONFATAL_FAILURE({ REPLACED(GetTickCount) tick; }, "GetTickCount was never called");
    REPLACED(GetTickCount) tick;
    tick.Optional();
    const REPLACED(GetTickCount) maybe(Maybe());
    const REPLACED(GetTickCount) quiet(Quietly());
}

TEST_F(KitTest, FailsOverACallThatMustNotBe)
{
    const REPLACED(GetTickCount) tick(Returns(DWORD(6)));
    const REPLACED(GetTickCount) never(Never());
    EXPECT_NONFATAL_FAILURE(EXPECT_EQ(GetTickCount(), 6u), "GetTickCount was called");
}

TEST_F(KitTest, FailsOverAFunctionThatIsNotImported)
{
    EXPECT_NONFATAL_FAILURE({ const REPLACED(Beep) beep(Maybe()); }, "Beep is not imported");
}

TEST_F(KitTest, ReplacementsNestPassOnAndEnd)
{
    const DWORD dwBefore = GetTickCount();
    {
        REPLACED(GetTickCount) outer(Returns(DWORD(1)));
        {
            REPLACED(GetTickCount) inner([&] { return inner.Next() + 1; });
            EXPECT_EQ(GetTickCount(), 2u);
            EXPECT_GE(inner.Real(), dwBefore);
            const REPLACED(GetTickCount) innermost;
            EXPECT_EQ(GetTickCount(), 2u);
        }
        EXPECT_EQ(GetTickCount(), 1u);
        EXPECT_EQ(outer.Calls(), 3u);
    }
    EXPECT_GE(GetTickCount(), dwBefore);
}

TEST_F(KitTest, ReplacesImportsByOrdinal)
{
    REPLACED(htons) swap(Returns(u_short(5)));
    EXPECT_EQ(htons(1), 5);
}

TEST_F(KitTest, KeepsOneJournal)
{
    REPLACED(GetTickCount) tick;
    REPLACED(GetTempPathW) path(Returns(DWORD(0)));
    const REPLACED(GetCurrentProcessId) quiet(Quietly());
    GetTempPathW(0, nullptr);
    Note("between");
    GetTickCount();
    GetCurrentProcessId();
    Sleep(5);
    MessageBoxW(nullptr, L"text", L"caption", MB_OK);
    EXPECT_EQ(Journal(), (Lines{"GetTempPathW", "between", "GetTickCount", "sleep 5", "box \"text\""}));
    EXPECT_EQ(JournalOf({"GetTickCount", "GetTempPathW"}), (Lines{"GetTempPathW", "GetTickCount"}));
    ExpectBox(L"text", L"caption");
}

TEST_F(KitTest, LeavesTheCallsOfOtherThreadsAlone)
{
    const REPLACED(GetTickCount) tick(Never());
    DWORD dwTick = 0;
    const HANDLE hThread = CreateThread(
        nullptr, 0, [](void* p) -> DWORD { return *static_cast<DWORD*>(p) = GetTickCount(); }, &dwTick, 0, nullptr);
    WaitForSingleObject(hThread, INFINITE);
    CloseHandle(hThread);
    EXPECT_NE(dwTick, 0u);
    EXPECT_EQ(tick.Calls(), 0u);
}

TEST_F(KitTest, SleepsAreKeptAndTakeNoTime)
{
    Sleep(INFINITE);
    EXPECT_EQ(Sleeps(), std::vector<DWORD>{INFINITE});
}

TEST_F(KitTest, EndingTheProcessEndsTheBody)
{
    bool bWentOn = false;
    EXPECT_EQ(ExitCodeOf([&] {
                  ExitProcess(0x80070057);
                  bWentOn = true;
              }),
              0x80070057u);
    EXPECT_FALSE(bWentOn);
    EXPECT_EQ(Journal(), Lines{"exit 2147942487"});
    struct Ending
    {
        ~Ending()
        {
            ExitProcess(4);
        }
    };
    EXPECT_EQ(ExitCodeOf([] { const Ending ending; }), 4u);
}

TEST_F(KitTest, ABodyMayReturnAndIsAnsweredLikeTheTest)
{
    REPLACED(GetTickCount) tick(Returns(DWORD(9)));
    EXPECT_EQ(ExitCodeOf([] { ExitProcess(GetTickCount()); }), 9u);
    EXPECT_EQ(ExitCodeOf([] { GetTickCount(); }), std::nullopt);
    EXPECT_EQ(tick.Calls(), 2u);
}

TEST_F(KitTest, FailsOverAnEndOfTheProcessThatNobodyExpected)
{
    EXPECT_THROW(ExitProcess(3), std::runtime_error);
}

TEST_F(KitTest, BoxesAreAnsweredWithOkAndComeInOrder)
{
    const HWND hwnd = reinterpret_cast<HWND>(0x1234);
    std::wstring strSeen;
    WhenBoxShows([&](const Box& box) { strSeen += box.strText + L'|'; });
    EXPECT_EQ(MessageBoxW(nullptr, L"first", L"a", MB_OK), IDOK);
    EXPECT_EQ(strSeen, L"first|");
    EXPECT_EQ(MessageBoxW(hwnd, L"second", L"b", MB_OK), IDOK);
    MessageBoxW(nullptr, nullptr, L"c", MB_ICONERROR);
    EXPECT_EQ(strSeen, L"first|second|(null)|");
    ExpectBox(L"first", L"a");
    ExpectBox(hwnd, L"second", L"b");
    const Box box = TakeBox();
    EXPECT_EQ(box.strText, L"(null)");
    EXPECT_EQ(box.nFlags, static_cast<UINT>(MB_ICONERROR));
}

TEST_F(KitTest, FailsOverABoxThatNeverCameOrHasOtherFlags)
{
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "no box was shown");
    EXPECT_NONFATAL_FAILURE(TakeBox(), "no box was shown");
    MessageBoxW(nullptr, L"text", L"caption", MB_ICONERROR);
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "nFlags");
}

class BoxLeftBehind : public Test
{
public:
    void TestBody() override
    {
        MessageBoxW(nullptr, L"text", L"caption", MB_OK);
    }
};

TEST(KitFailureTest, FailsOverABoxThatNobodyExpected)
{
    EXPECT_NONFATAL_FAILURE(BoxLeftBehind().TestBody(), "nobody expected the box \"text\", captioned \"caption\"");
}

} // namespace
