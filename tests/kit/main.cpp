// Runs the tests of one program.

#include "tests/kit/Unreplaced.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

// A crash is a failure like any other: told at once, without a debugger or a box.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* pInfo)
{
    const testing::TestInfo* pTest = testing::UnitTest::GetInstance()->current_test_info();
    std::printf("\ncrashed with 0x%08lX at %p in %s.%s\n", pInfo->ExceptionRecord->ExceptionCode,
                pInfo->ExceptionRecord->ExceptionAddress, pTest != nullptr ? pTest->test_suite_name() : "no",
                pTest != nullptr ? pTest->name() : "test");
    std::fflush(stdout);
    kit::unreplaced::TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

int main(int argc, char** argv)
{
    SetUnhandledExceptionFilter(OnCrash);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
