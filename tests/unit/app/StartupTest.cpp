// What start-up takes, with the system's own. What it does when the system refuses is in WinMainTest.cpp.

#include "app/Startup.h"

#include "tests/kit/Test.h"

using namespace kit;

namespace {

using InstanceLock = Test;

TEST_F(InstanceLock, KeepsASecondOneOutAndIsReleasedWhereItIsHeld)
{
    const REPLACED(ReleaseMutex) release;
    {
        const CInstanceLock never;
        CInstanceLock second;
        CInstanceLock first;
        EXPECT_TRUE(first.Acquire());
        EXPECT_FALSE(second.Acquire());
    }
    EXPECT_EQ(release.Calls(), 1u);
}

using SupportedWindows = Test;

TEST_F(SupportedWindows, IsTenBuild19041OrNewer)
{
    EXPECT_TRUE(IsSupportedWindows()); // the one under the tests

    const REPLACED(VerSetConditionMask)
        set(InTurn(Returns(ULONGLONG(0x11)), Returns(ULONGLONG(0x22)), Returns(ULONGLONG(0x33))));
    OSVERSIONINFOEXW asked = {};
    const REPLACED(VerifyVersionInfoW) verify([&](OSVERSIONINFOEXW* pVersion, DWORD, DWORDLONG) {
        asked = *pVersion;
        return TRUE;
    });
    EXPECT_TRUE(IsSupportedWindows());

    EXPECT_EQ(set.Calls(), 3u);
    const DWORD fields[] = {VER_MAJORVERSION, VER_MINORVERSION, VER_BUILDNUMBER};
    const ULONGLONG masksSoFar[] = {0, 0x11, 0x22};
    for (size_t n = 0; n < 3; ++n) {
        EXPECT_EQ(set.Arguments(n), std::tuple(masksSoFar[n], fields[n], VER_GREATER_EQUAL));
    }
    OSVERSIONINFOEXW wanted = {};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = 10;
    wanted.dwBuildNumber = 19041;
    EXPECT_EQ(memcmp(&asked, &wanted, sizeof(wanted)), 0);
    EXPECT_EQ(verify.Arguments(), std::tuple(kAny, 7u, 0x33u));
}

} // namespace
