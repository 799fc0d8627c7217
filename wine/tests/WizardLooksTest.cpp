// What is seen: titles, the page's place and ground, the layout at every resolution.
#include "frame/FrameLayout.h"
#include "tests/WizardTest.h"

class WizardLooks : public WizardTest
{
protected:
    std::function<void()> Next = [this] { Click(kNextButtonId); };
    std::function<void()> Cancel = [this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_CANCEL, 0); };
};

TEST_F(WizardLooks, TheCaptionIsTheWindowsTitle)
{
    EXPECT_EQ(Run({IDD_TEXT}, {[this] {
                                   EXPECT_EQ(TextOf(Frame()), "Caption from the resources");
                                   EXPECT_EQ(FindWindowW(nullptr, L"Caption from the resources"), Frame());
                               },
                               [this] {
                                   SendMessageW(Frame(), PSM_SETTITLE, 0, reinterpret_cast<LPARAM>(L"Another"));
                                   EXPECT_EQ(TextOf(Frame()), "Another");
                               },
                               Cancel}),
              0);
}

TEST_F(WizardLooks, TheHeaderTitleIsThePages)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX},
                  {[this] { EXPECT_EQ(HeaderTitle(), "Nothing to do"); }, Next,
                   [this] { EXPECT_EQ(HeaderTitle(), "Something to do"); },
                   [this] {
                       SendMessageW(Frame(), PSM_SETHEADERTITLE, 1, reinterpret_cast<LPARAM>(L"Renamed"));
                       SendMessageW(Frame(), PSM_SETHEADERTITLE, 0, reinterpret_cast<LPARAM>(L"First renamed"));
                       EXPECT_EQ(HeaderTitle(), "Renamed");
                   },
                   [this] { Click(kBackButtonId); }, [this] { EXPECT_EQ(HeaderTitle(), "First renamed"); }, Cancel}),
              0);
}

TEST_F(WizardLooks, ThePageHasNoCaptionOfItsOwnAndTheSizeOfItsTemplate)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_SMALL}, {[this] {
                                              const LONG_PTR nStyle = GetWindowLongPtrW(CurrentPage(), GWL_STYLE);
                                              EXPECT_EQ(nStyle & (WS_CAPTION | WS_DISABLED | WS_POPUP), 0);
                                              EXPECT_TRUE(IsWindowVisible(CurrentPage()));
                                              RECT expected = {0, 0, 200, 100};
                                              MapDialogRect(CurrentPage(), &expected);
                                              RECT client = {};
                                              GetClientRect(CurrentPage(), &client);
                                              EXPECT_TRUE(EqualRect(&client, &expected))
                                                  << client.right << "x" << client.bottom;
                                          },
                                          Next,
                                          [this] {
                                              const LONG_PTR nStyle = GetWindowLongPtrW(CurrentPage(), GWL_STYLE);
                                              EXPECT_EQ(nStyle & (WS_CAPTION | WS_SYSMENU | WS_POPUP), 0);
                                          },
                                          Cancel}),
              0);
}

TEST_F(WizardLooks, OnlyTheCurrentPageIsSeen)
{
    HWND hwndFirst = nullptr;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX}, {[&] { hwndFirst = CurrentPage(); }, Next,
                                        [&] {
                                            EXPECT_FALSE(IsWindowVisible(hwndFirst));
                                            EXPECT_TRUE(IsWindowVisible(CurrentPage()));
                                        },
                                        Cancel}),
              0);
}

TEST_F(WizardLooks, PageAndTextsStandOnWhite)
{
    EXPECT_EQ(Run({IDD_BOX}, {[this] {
                                  const HDC hdc = GetDC(Control(IDC_TEXT));
                                  for (const UINT nMessage : {WM_CTLCOLORDLG, WM_CTLCOLORSTATIC}) {
                                      const HWND hwnd = nMessage == WM_CTLCOLORDLG ? CurrentPage() : Control(IDC_TEXT);
                                      EXPECT_EQ(SendMessageW(CurrentPage(), nMessage, reinterpret_cast<WPARAM>(hdc),
                                                             reinterpret_cast<LPARAM>(hwnd)),
                                                reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW)));
                                      EXPECT_EQ(GetBkColor(hdc), GetSysColor(COLOR_WINDOW));
                                  }
                                  ReleaseDC(Control(IDC_TEXT), hdc);
                              },
                              Cancel}),
              0);
}

TEST_F(WizardLooks, ADisabledEditStaysGrey)
{
    EXPECT_EQ(Run({IDD_FIELDS}, {[this] {
                                     const HDC hdc = GetDC(Control(IDC_DISABLED));
                                     EXPECT_EQ(SendMessageW(CurrentPage(), WM_CTLCOLORSTATIC,
                                                            reinterpret_cast<WPARAM>(hdc),
                                                            reinterpret_cast<LPARAM>(Control(IDC_DISABLED))),
                                               reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_3DFACE)));
                                     ReleaseDC(Control(IDC_DISABLED), hdc);
                                 },
                                 Cancel}),
              0);
}

// Resolution in dots per inch.
class FrameLayout : public testing::TestWithParam<UINT>
{
protected:
    static RECT Union(const RECT& a, const RECT& b)
    {
        RECT all = {};
        UnionRect(&all, &a, &b);
        return all;
    }

    static bool Overlap(const RECT& a, const RECT& b)
    {
        RECT common = {};
        return IntersectRect(&common, &a, &b) != FALSE;
    }

    int At96(int nPixels) const
    {
        return MulDiv(nPixels, static_cast<int>(GetParam()), 96);
    }

    CFrameLayout Layout(SIZE page, SIZE widestButton) const
    {
        return CFrameLayout(
            {.nDpi = GetParam(),
             .page = {At96(static_cast<int>(page.cx)), At96(static_cast<int>(page.cy))},
             .captionText = {At96(8), At96(16)},
             .headerTitle = {At96(10), At96(21)},
             .widestButton = {At96(static_cast<int>(widestButton.cx)), At96(static_cast<int>(widestButton.cy))}});
    }
};

TEST_P(FrameLayout, NothingOverlapsAndAllIsInside)
{
    const CFrameLayout layout = Layout({550, 390}, {40, 16});
    const RECT parts[] = {layout.BackButton(), layout.Icon(),        layout.CaptionText(),
                          layout.CloseBox(),   layout.HeaderTitle(), layout.Page(),
                          layout.Button(0),    layout.Button(1),     layout.Button(2)};
    const RECT frame = {0, 0, layout.Frame().cx, layout.Frame().cy};
    for (size_t n = 0; n < std::size(parts); ++n) {
        EXPECT_FALSE(IsRectEmpty(&parts[n])) << n;
        const RECT both = Union(frame, parts[n]);
        EXPECT_TRUE(EqualRect(&both, &frame)) << n;
        for (size_t m = 0; m < n; ++m) {
            EXPECT_FALSE(Overlap(parts[n], parts[m])) << n << " and " << m;
        }
    }
    EXPECT_EQ(layout.Strip().bottom, frame.bottom);
    EXPECT_GE(layout.Button(2).top, layout.Strip().top + layout.LineWidth());
    EXPECT_FALSE(Overlap(layout.Page(), layout.Strip()));
}

TEST_P(FrameLayout, ALongTextMakesEveryButtonWide)
{
    const CFrameLayout layout = Layout({550, 390}, {150, 16});
    for (const int n : {0, 1, 2}) {
        EXPECT_GT(layout.Button(n).right - layout.Button(n).left, At96(150));
    }
}

TEST_P(FrameLayout, ASmallPageLeavesRoomForAllButtons)
{
    const CFrameLayout layout = Layout({100, 100}, {150, 16});
    EXPECT_GE(layout.Button(2).left, 0);
}

TEST_P(FrameLayout, AHighTextMakesEveryButtonHighAndHidesNone)
{
    const CFrameLayout layout = Layout({550, 390}, {150, 60});
    for (const int n : {0, 1, 2}) {
        EXPECT_GT(layout.Button(n).bottom - layout.Button(n).top, At96(60));
        EXPECT_LT(layout.Button(n).bottom, layout.Frame().cy);
        EXPECT_GE(layout.Button(n).top, layout.Page().bottom);
    }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, FrameLayout, testing::Values(96u, 120u, 144u, 192u, 288u));
