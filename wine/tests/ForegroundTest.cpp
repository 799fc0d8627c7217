#include "system/Foreground.h"

#include <gtest/gtest.h>

class Foreground : public testing::Test
{
protected:
    static HWND MakeWindow(HWND hwndOwner)
    {
        return CreateWindowExW(0, L"Static", L"Window", WS_POPUP | WS_CAPTION | WS_VISIBLE, 100, 100, 200, 100,
                               hwndOwner, nullptr, nullptr, nullptr);
    }

    void SetUp() override
    {
        m_hwnd = MakeWindow(nullptr);
        m_hwndOther = MakeWindow(nullptr);
    }

    void TearDown() override
    {
        DestroyWindow(m_hwnd);
        DestroyWindow(m_hwndOther);
    }

    HWND m_hwnd = nullptr;
    HWND m_hwndOther = nullptr;
};

TEST_F(Foreground, TheWindowGetsIt)
{
    ASSERT_TRUE(SetForegroundWindow(m_hwndOther));
    EXPECT_TRUE(BringToForeground(m_hwnd));
    EXPECT_EQ(GetForegroundWindow(), m_hwnd);
}

TEST_F(Foreground, TheBoxOfADisabledWindowGetsIt)
{
    const HWND hwndBox = MakeWindow(m_hwnd);
    EnableWindow(m_hwnd, FALSE);
    ASSERT_TRUE(SetForegroundWindow(m_hwndOther));
    EXPECT_TRUE(BringToForeground(m_hwnd));
    EXPECT_EQ(GetForegroundWindow(), hwndBox);
}

TEST_F(Foreground, NoWindowGetsNothing)
{
    EXPECT_FALSE(BringToForeground(nullptr));
}
