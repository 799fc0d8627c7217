// What start-up takes, piece by piece, and gives back.

#include "app/Startup.h"

#include "tests/kit/Test.h"

#include <objbase.h>

using namespace kit;

namespace {

const HANDLE hMutex = reinterpret_cast<HANDLE>(0x71);

class InstanceLock : public Test
{
protected:
    InstanceLock() : m_close([this](HANDLE h) { return h == hMutex || m_close.Next(h); })
    {
        m_release.Optional();
        m_close.Optional();
    }

    REPLACED(ReleaseMutex) m_release { Returns(TRUE) };
    REPLACED(CloseHandle) m_close;
};

TEST_F(InstanceLock, IsANamedMutexOwnedFromTheStart)
{
    const REPLACED(CreateMutexW) create(Returns(hMutex, ERROR_SUCCESS));
    {
        CInstanceLock lock;
        EXPECT_TRUE(lock.Acquire());
        EXPECT_EQ(Journal(), Lines{"CreateMutexW"});
    }
    EXPECT_EQ(create.Arg<0>(), nullptr);
    EXPECT_EQ(create.Arg<1>(), TRUE);
    EXPECT_EQ(create.Arg<2>(), L"KALVO_APK_INSTALLER_MUTEX");
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "ReleaseMutex", "CloseHandle"}));
    EXPECT_EQ(m_release.Arg<0>(), hMutex);
    EXPECT_EQ(m_close.Arg<0>(), hMutex);
}

TEST_F(InstanceLock, OfAnotherInstanceIsClosedAtOnceAndNeverReleased)
{
    const REPLACED(CreateMutexW) create(Returns(hMutex, ERROR_ALREADY_EXISTS));
    {
        CInstanceLock lock;
        EXPECT_FALSE(lock.Acquire());
        EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "CloseHandle"}));
    }
    EXPECT_EQ(Journal(), (Lines{"CreateMutexW", "CloseHandle"}));
}

TEST_F(InstanceLock, ThatCannotBeMadeCountsAsAnotherInstances)
{
    for (const DWORD dwError : {ERROR_ACCESS_DENIED, ERROR_SUCCESS, ERROR_ALREADY_EXISTS}) {
        const REPLACED(CreateMutexW) create(Returns(HANDLE(nullptr), dwError));
        CInstanceLock lock;
        EXPECT_FALSE(lock.Acquire());
    }
    EXPECT_EQ(m_close.Calls(), 0u);
    EXPECT_EQ(m_release.Calls(), 0u);
}

TEST_F(InstanceLock, AnOldLastErrorMeansNothing)
{
    const REPLACED(CreateMutexW) create(Returns(hMutex, ERROR_ACCESS_DENIED));
    CInstanceLock lock;
    EXPECT_TRUE(lock.Acquire());
}

TEST_F(InstanceLock, NeverAcquiredGivesNothingBack)
{
    {
        const CInstanceLock lock;
    }
    EXPECT_EQ(Journal(), Lines());
}

TEST_F(InstanceLock, KeepsASecondOneOut)
{
    CInstanceLock second;
    {
        CInstanceLock first;
        EXPECT_TRUE(first.Acquire());
        EXPECT_FALSE(second.Acquire());
    }
}

class ComLibrary : public Test
{
protected:
    REPLACED(CoUninitialize) m_uninitialize { [] {} };
};

TEST_F(ComLibrary, IsStartedForASingleThreadedApartment)
{
    const REPLACED(CoInitializeEx) initialize(Returns(HRESULT(S_OK)));
    {
        CComLibrary com;
        EXPECT_TRUE(com.Start());
        EXPECT_EQ(Journal(), Lines{"CoInitializeEx"});
    }
    EXPECT_EQ(Journal(), (Lines{"CoInitializeEx", "CoUninitialize"}));
    EXPECT_EQ(initialize.Arg<0>(), nullptr);
    EXPECT_EQ(initialize.Arg<1>(), 6u);
}

TEST_F(ComLibrary, StartedAlreadyIsStarted)
{
    const REPLACED(CoInitializeEx) initialize(Returns(HRESULT(S_FALSE)));
    CComLibrary com;
    EXPECT_TRUE(com.Start());
}

TEST_F(ComLibrary, IsLeftEvenWhenItDidNotStart)
{
    const REPLACED(CoInitializeEx) initialize(Returns(HRESULT(RPC_E_CHANGED_MODE)));
    {
        CComLibrary com;
        EXPECT_FALSE(com.Start());
    }
    EXPECT_EQ(Journal(), (Lines{"CoInitializeEx", "CoUninitialize"}));
}

class WinSockLibrary : public Test
{
protected:
    WinSockLibrary()
    {
        m_cleanup.Optional();
    }

    REPLACED(WSACleanup) m_cleanup { Returns(0) };
};

TEST_F(WinSockLibrary, IsStartedInVersionTwoPointTwo)
{
    const REPLACED(WSAStartup) startup(Returns(0));
    {
        CWinSockLibrary winSock;
        EXPECT_TRUE(winSock.Start());
        EXPECT_EQ(Journal(), Lines{"WSAStartup"});
    }
    EXPECT_EQ(Journal(), (Lines{"WSAStartup", "WSACleanup"}));
    EXPECT_EQ(startup.Arg<0>(), 0x0202);
    EXPECT_NE(startup.Arg<1>(), nullptr);
}

TEST_F(WinSockLibrary, IsNotLeftWhenItDidNotStart)
{
    const REPLACED(WSAStartup) startup(Returns(int(WSASYSNOTREADY)));
    {
        CWinSockLibrary winSock;
        EXPECT_FALSE(winSock.Start());
    }
    EXPECT_EQ(Journal(), Lines{"WSAStartup"});
}

class SupportedWindows : public Test
{
};

TEST_F(SupportedWindows, IsTenBuild19041OrNewer)
{
    const REPLACED(VerSetConditionMask)
        set(InTurn(Returns(ULONGLONG(0x11)), Returns(ULONGLONG(0x22)), Returns(ULONGLONG(0x33))));
    OSVERSIONINFOEXW asked = {};
    const REPLACED(VerifyVersionInfoW) verify([&](OSVERSIONINFOEXW* pVersion, DWORD, DWORDLONG) {
        asked = *pVersion;
        return TRUE;
    });
    EXPECT_TRUE(IsSupportedWindows());

    EXPECT_EQ(set.Calls(), 3u);
    EXPECT_EQ(set.Arg<0>(0), 0u);
    EXPECT_EQ(set.Arg<1>(0), static_cast<DWORD>(VER_MAJORVERSION));
    EXPECT_EQ(set.Arg<2>(0), VER_GREATER_EQUAL);
    EXPECT_EQ(set.Arg<0>(1), 0x11u);
    EXPECT_EQ(set.Arg<1>(1), static_cast<DWORD>(VER_MINORVERSION));
    EXPECT_EQ(set.Arg<2>(1), VER_GREATER_EQUAL);
    EXPECT_EQ(set.Arg<0>(2), 0x22u);
    EXPECT_EQ(set.Arg<1>(2), static_cast<DWORD>(VER_BUILDNUMBER));
    EXPECT_EQ(set.Arg<2>(2), VER_GREATER_EQUAL);

    OSVERSIONINFOEXW wanted = {};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = 10;
    wanted.dwBuildNumber = 19041;
    EXPECT_EQ(memcmp(&asked, &wanted, sizeof(wanted)), 0);
    EXPECT_EQ(verify.Arg<1>(), 7u);
    EXPECT_EQ(verify.Arg<2>(), 0x33u);
}

TEST_F(SupportedWindows, IsNotAnOlderOne)
{
    const REPLACED(VerifyVersionInfoW) verify(Returns(FALSE, ERROR_OLD_WIN_VERSION));
    EXPECT_FALSE(IsSupportedWindows());
}

TEST_F(SupportedWindows, IsTheOneUnderTheTests)
{
    EXPECT_TRUE(IsSupportedWindows());
}

class BringingToFront : public Test
{
};

TEST_F(BringingToFront, FindsTheWindowByItsTitleAlone)
{
    const HWND hwnd = reinterpret_cast<HWND>(0x5150);
    const REPLACED(FindWindowW) find(Returns(hwnd));
    const REPLACED(SetForegroundWindow) front(Returns(TRUE));
    BringToFront(L"The title");
    EXPECT_EQ(find.Arg<0>(), L"(null)");
    EXPECT_EQ(find.Arg<1>(), L"The title");
    EXPECT_EQ(front.Arg<0>(), hwnd);
}

TEST_F(BringingToFront, DoesNothingWithoutSuchAWindow)
{
    const REPLACED(FindWindowW) find(Returns(HWND(nullptr)));
    REPLACED(SetForegroundWindow) front;
    front.Optional();
    BringToFront(L"The title");
    EXPECT_EQ(front.Calls(), 0u);
}

} // namespace
