// The kit's own promises.

#include "tests/kit/Test.h"

#include <gtest/gtest-spi.h>

#include <winsock2.h>

using namespace kit;

namespace {

class KitTest : public Test
{
};

TEST_F(KitTest, GivesTheScriptedResultAndLastError)
{
    REPLACED(GetTempPathW) path(Returns(DWORD(0), ERROR_ACCESS_DENIED));
    SetLastError(1);
    EXPECT_EQ(GetTempPathW(0, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST_F(KitTest, LeavesTheLastErrorAloneUnlessTold)
{
    REPLACED(GetTempPathW) path(Returns(DWORD(0)));
    SetLastError(7);
    GetTempPathW(0, nullptr);
    EXPECT_EQ(GetLastError(), 7u);
}

TEST_F(KitTest, KeepsArgumentsOfEveryCall)
{
    REPLACED(SetEnvironmentVariableW) set(Returns(TRUE));
    WCHAR szName[] = L"A";
    SetEnvironmentVariableW(szName, L"x");
    szName[0] = L'B';
    SetEnvironmentVariableW(szName, nullptr);
    EXPECT_EQ(set.Calls(), 2u);
    EXPECT_EQ(set.Arg<0>(0), L"A");
    EXPECT_EQ(set.Arg<1>(0), L"x");
    EXPECT_EQ(set.Arg<0>(1), L"B");
    EXPECT_EQ(set.Arg<1>(1), L"(null)");
}

TEST_F(KitTest, AnswersInTurnAndPassesOn)
{
    REPLACED(GetTickCount) tick(InTurn(Returns(DWORD(1)), PassOn(), [] { return DWORD(3); }));
    EXPECT_EQ(GetTickCount(), 1u);
    EXPECT_GT(GetTickCount(), 3u);
    EXPECT_EQ(GetTickCount(), 3u);
}

TEST_F(KitTest, FailsOverMoreCallsThanAnswers)
{
    REPLACED(GetTickCount) tick(InTurn(Returns(DWORD(1))));
    GetTickCount();
    EXPECT_NONFATAL_FAILURE(GetTickCount(), "GetTickCount was called more than 1 times");
}

TEST_F(KitTest, FailsOverAReplacementThatNobodyCalled)
{
    EXPECT_NONFATAL_FAILURE({ REPLACED(GetTickCount) tick; }, "GetTickCount was never called");
    REPLACED(GetTickCount) tick;
    tick.Optional();
}

TEST_F(KitTest, FailsOverAnArgumentOfACallThatNeverWas)
{
    REPLACED(GetTempPathW) path(Returns(DWORD(0)));
    GetTempPathW(5, nullptr);
    EXPECT_NONFATAL_FAILURE(path.Arg<0>(1), "GetTempPathW was called only 1 times");
}

TEST_F(KitTest, FailsOverAFunctionThatIsNotImported)
{
    EXPECT_NONFATAL_FAILURE(
        {
            REPLACED(Beep) beep;
            beep.Optional();
        },
        "Beep is not imported");
}

TEST_F(KitTest, ReplacementsNestAndEnd)
{
    const DWORD dwBefore = GetTickCount();
    {
        REPLACED(GetTickCount) outer(Returns(DWORD(1)));
        {
            REPLACED(GetTickCount) inner(Returns(DWORD(2)));
            EXPECT_EQ(GetTickCount(), 2u);
            EXPECT_GE(inner.Real(), dwBefore);
        }
        EXPECT_EQ(GetTickCount(), 1u);
    }
    EXPECT_GE(GetTickCount(), dwBefore);
}

TEST_F(KitTest, AnInnerReplacementPassesOnToTheOuterOne)
{
    REPLACED(GetTickCount) outer(Returns(DWORD(1)));
    {
        const REPLACED(GetTickCount) inner;
        EXPECT_EQ(GetTickCount(), 1u);
    }
    REPLACED(GetTickCount) inner([&] { return inner.Next() + 1; });
    EXPECT_EQ(GetTickCount(), 2u);
    EXPECT_EQ(outer.Calls(), 2u);
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
    GetTempPathW(0, nullptr);
    Note("between");
    GetTickCount();
    Sleep(5);
    MessageBoxW(nullptr, L"text", L"caption", MB_OK);
    EXPECT_EQ(Journal(), (Lines{"GetTempPathW", "between", "GetTickCount", "sleep 5", "box \"text\""}));
    EXPECT_EQ(JournalOf({"GetTickCount", "GetTempPathW"}), (Lines{"GetTempPathW", "GetTickCount"}));
    ExpectBox(L"text", L"caption");
}

TEST_F(KitTest, LeavesTheCallsOfOtherThreadsAlone)
{
    REPLACED(GetTickCount) tick(Returns(DWORD(0)));
    tick.Optional();
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
}

TEST_F(KitTest, ABodyMayReturn)
{
    EXPECT_EQ(ExitCodeOf([] { GetTickCount(); }), std::nullopt);
}

TEST_F(KitTest, TheProcessMayEndInADestructor)
{
    struct Ending
    {
        ~Ending()
        {
            ExitProcess(4);
        }
    };
    EXPECT_EQ(ExitCodeOf([] { const Ending ending; }), 4u);
}

TEST_F(KitTest, ReplacementsWorkInABody)
{
    REPLACED(GetTickCount) tick(Returns(DWORD(9)));
    EXPECT_EQ(ExitCodeOf([] { ExitProcess(GetTickCount()); }), 9u);
}

TEST_F(KitTest, FailsOverAnEndOfTheProcessThatNobodyExpected)
{
    EXPECT_THROW(ExitProcess(3), std::runtime_error);
}

TEST_F(KitTest, BoxesAreAnsweredWithOkAndComeInOrder)
{
    const HWND hwnd = reinterpret_cast<HWND>(0x1234);
    EXPECT_EQ(MessageBoxW(nullptr, L"first", L"a", MB_OK), IDOK);
    EXPECT_EQ(MessageBoxW(hwnd, L"second", L"b", MB_OK), IDOK);
    MessageBoxW(nullptr, nullptr, L"c", MB_ICONERROR);
    ExpectBox(L"first", L"a");
    ExpectBox(hwnd, L"second", L"b");
    const Box box = TakeBox();
    EXPECT_EQ(box.strText, L"(null)");
    EXPECT_EQ(box.nFlags, static_cast<UINT>(MB_ICONERROR));
}

TEST_F(KitTest, FailsOverABoxThatNeverCame)
{
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "no box was shown");
    EXPECT_NONFATAL_FAILURE(TakeBox(), "no box was shown");
}

TEST_F(KitTest, FailsOverABoxWithOtherFlags)
{
    MessageBoxW(nullptr, L"text", L"caption", MB_ICONERROR);
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "nFlags");
}

TEST_F(KitTest, LooksOnWhileABoxIsUp)
{
    std::wstring strSeen;
    WhenBoxShows([&](const Box& box) { strSeen = box.strText; });
    MessageBoxW(nullptr, L"now", L"caption", MB_OK);
    EXPECT_EQ(strSeen, L"now");
    ExpectBox(L"now", L"caption");
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
