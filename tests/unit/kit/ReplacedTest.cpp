// What the kit fails a test for, and whom it leaves alone. That it answers, keeps and notes is what every test lives
// on.

#include "tests/kit/Test.h"

#include <gtest/gtest-spi.h>

using namespace kit;

namespace {

using KitTest = Test;

TEST_F(KitTest, FailsOverAReplacementThatNobodyCalled)
{
    EXPECT_NONFATAL_FAILURE({ REPLACED(GetTickCount) tick; }, "GetTickCount was never called");
    const REPLACED(GetTickCount) maybe(Maybe());
    const REPLACED(GetTickCount) quiet(Quietly());
}

TEST_F(KitTest, FailsOverMoreCallsThanAnswers)
{
    REPLACED(GetTickCount) tick(InTurn(Returns(DWORD(1))));
    EXPECT_EQ(GetTickCount(), 1u);
    EXPECT_NONFATAL_FAILURE(EXPECT_EQ(GetTickCount(), 1u), "GetTickCount was called more than 1 times");
}

TEST_F(KitTest, FailsOverACallThatMustNotBe)
{
    const REPLACED(GetTickCount) tick(Returns(DWORD(6)));
    const REPLACED(GetTickCount) never(Never());
    EXPECT_NONFATAL_FAILURE(EXPECT_EQ(GetTickCount(), 6u), "GetTickCount was called");
}

TEST_F(KitTest, FailsOverOtherArgumentsAndCallsThatNeverWere)
{
    REPLACED(SetEnvironmentVariableW) set(Returns(TRUE));
    WCHAR szName[] = L"A";
    SetEnvironmentVariableW(szName, nullptr);
    szName[0] = L'B';
    EXPECT_EQ(set.Arguments(), std::tuple(kAny, L"(null)"));
    EXPECT_NE(set.Arguments(), std::tuple(L"B", kAny));
    EXPECT_NONFATAL_FAILURE(set.Arg<0>(1), "SetEnvironmentVariableW was called only 1 times");
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
        }
        EXPECT_EQ(GetTickCount(), 1u);
        EXPECT_EQ(outer.Calls(), 2u);
    }
    EXPECT_GE(GetTickCount(), dwBefore);
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

TEST_F(KitTest, EndingTheProcessEndsTheBodyAndFailsAnywhereElse)
{
    bool bWentOn = false;
    EXPECT_EQ(ExitCodeOf([&] {
                  ExitProcess(0x80070057);
                  bWentOn = true;
              }),
              0x80070057u);
    EXPECT_FALSE(bWentOn);
    EXPECT_THROW(ExitProcess(3), std::runtime_error);
}

TEST_F(KitTest, FailsOverABoxThatNeverCameOrIsAnother)
{
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "no box was shown");
    EXPECT_NONFATAL_FAILURE(TakeBox(), "no box was shown");
    MessageBoxW(nullptr, L"text", L"caption", MB_ICONERROR);
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "nFlags");
    const HWND hwnd = reinterpret_cast<HWND>(0x1234);
    MessageBoxW(hwnd, L"text", L"caption", MB_OK);
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"caption"), "hwndOwner");
    MessageBoxW(nullptr, L"text", L"caption", MB_OK);
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"other", L"caption"), "strText");
    MessageBoxW(nullptr, L"text", L"caption", MB_OK);
    EXPECT_NONFATAL_FAILURE(ExpectBox(L"text", L"other"), "strCaption");
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
