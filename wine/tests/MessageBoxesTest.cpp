// Boxes with short and long captions, with and without a picture.
#include "system/MessageBoxes.h"

#include "frame/FrameFonts.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr WCHAR kLongCaption[] = L"A caption that says far more than the two words of the text below it";

// What the open box looks like, noted by a timer, which then answers it.
struct BOX
{
    RECT box, button;
    bool bPicture; // or an empty place for one
};

BOX g_seen;

void CALLBACK NoteAndAnswer(HWND /*hwnd*/, UINT /*nMessage*/, UINT_PTR nTimer, DWORD /*dwTime*/)
{
    const HWND hwnd = GetActiveWindow();
    const HWND hwndButton = GetDlgItem(hwnd, IDCANCEL) ? GetDlgItem(hwnd, IDCANCEL) : GetDlgItem(hwnd, IDOK);
    if (hwndButton != nullptr && IsWindowVisible(hwnd)) {
        KillTimer(nullptr, nTimer);
        GetWindowRect(hwnd, &g_seen.box);
        GetWindowRect(hwndButton, &g_seen.button);
        HWND hwndStatic = nullptr;
        while ((hwndStatic = FindWindowExW(hwnd, hwndStatic, L"Static", nullptr)) != nullptr) {
            g_seen.bPicture |= IsWindowVisible(hwndStatic) && GetWindowTextLengthW(hwndStatic) == 0;
        }
        PostMessageW(hwnd, WM_COMMAND, static_cast<WPARAM>(GetDlgCtrlID(hwndButton)), 0);
    }
}

BOX Show(PCWSTR pszCaption, UINT nType = MB_OK)
{
    g_seen = {};
    SetTimer(nullptr, 0, 100, NoteAndAnswer);
    EXPECT_EQ(ShowMessageBox(nullptr, L"Two words", pszCaption, nType), IDOK);
    return g_seen;
}

LONG Width(const RECT& rect)
{
    return rect.right - rect.left;
}

} // namespace

TEST(MessageBoxes, AreAsWideAsTheirCaptionsWithTheButtonInTheMiddle)
{
    const CFrameFonts fonts(GetDpiForSystem());
    const BOX seen = Show(kLongCaption);
    EXPECT_GT(Width(seen.box), MeasureText(fonts.Text(), kLongCaption).cx);
    EXPECT_NEAR(seen.box.left + seen.box.right, seen.button.left + seen.button.right, 10);
}

TEST(MessageBoxes, StayAsTheyAreWhenThereIsRoom)
{
    EXPECT_LT(Width(Show(L"A").box), Width(Show(kLongCaption).box) / 2);
}

TEST(MessageBoxes, AreNoWiderThanTheScreen)
{
    const std::wstring szEndless(400, L'm');
    EXPECT_LE(Width(Show(szEndless.c_str()).box), GetSystemMetrics(SM_CXSCREEN));
}

TEST(MessageBoxes, HaveNoPlaceForAPictureThatTheyDoNotHave)
{
    EXPECT_FALSE(Show(L"A").bPicture);
    EXPECT_TRUE(Show(L"A", MB_ICONERROR).bPicture);
}
