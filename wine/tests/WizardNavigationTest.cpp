// The way through the pages: what the frame tells them, in which order, and what it does with their answers.
#include "tests/WizardTest.h"

class WizardNavigation : public WizardTest
{
protected:
    std::function<void()> Next = [this] { Click(kNextButtonId); };
    std::function<void()> Back = [this] { Click(kBackButtonId); };
    std::function<void()> Finish = [this] { Click(kFinishButtonId); };
    std::function<void()> Cancel = [this] { Click(IDCANCEL); };

    std::function<void()> ExpectPage(int nNumber)
    {
        return [this, nNumber] { EXPECT_EQ(CurrentNumber(), nNumber); };
    }
};

TEST_F(WizardNavigation, PagesAreMadeWhenFirstShownAndKept)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_TEXT}, {Next, Back, Next, Cancel}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "2 back", "2 kill",
                                "1 active", "1 next", "1 kill", "2 active", "2 querycancel", "1 reset", "2 reset"}));
}

TEST_F(WizardNavigation, FinishGivesOne)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX}, {Next, Finish}), 1);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "2 finish"}));
}

TEST_F(WizardNavigation, APageCanRefuseToFinish)
{
    m_answers[{1, PSN_WIZFINISH}] = 1;
    EXPECT_EQ(Run({IDD_TEXT}, {Finish, ExpectPage(1), [this] { m_answers.clear(); }, Finish}), 1);
}

TEST_F(WizardNavigation, APageCanRefuseToCancel)
{
    m_answers[{1, PSN_QUERYCANCEL}] = TRUE;
    EXPECT_EQ(Run({IDD_TEXT}, {Cancel, [this] { m_answers.clear(); }, Cancel}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 querycancel", "1 querycancel", "1 reset"}));
}

TEST_F(WizardNavigation, TheCloseBoxCancelsAndSaysSo)
{
    EXPECT_EQ(Run({IDD_TEXT}, {[this] { SendMessageW(Frame(), WM_SYSCOMMAND, SC_CLOSE, 0); }}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 querycancel", "1 reset close box"}));
}

TEST_F(WizardNavigation, TheCloseBoxCancelsWhereCancelIsHidden)
{
    EXPECT_EQ(Run({IDD_TEXT}, {[this] { ShowButtons(PSWIZB_FINISH, PSWIZB_FINISH | PSWIZB_CANCEL); },
                               [this] { SendMessageW(Frame(), WM_CLOSE, 0, 0); }}),
              0);
}

TEST_F(WizardNavigation, MinusOneToNextOrBackStaysWithoutLeaving)
{
    m_answers[{2, PSN_WIZNEXT}] = -1;
    m_answers[{2, PSN_WIZBACK}] = -1;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_TEXT}, {Next, Next, ExpectPage(2), Back, ExpectPage(2), Cancel}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "2 next", "2 back",
                                "2 querycancel", "1 reset", "2 reset"}));
}

TEST_F(WizardNavigation, AnIdInAnswerToNextNamesThePage)
{
    m_answers[{1, PSN_WIZNEXT}] = IDD_FIELDS;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_FIELDS}, {Next, ExpectPage(3), Cancel}), 0);
}

TEST_F(WizardNavigation, AnUnknownIdInAnswerToNextStays)
{
    m_answers[{1, PSN_WIZNEXT}] = 999;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX}, {Next, ExpectPage(1), Cancel}), 0);
}

TEST_F(WizardNavigation, APageMayHoldOnToItsActivity)
{
    m_answers[{1, PSN_KILLACTIVE}] = TRUE;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX}, {Next, ExpectPage(1), Cancel}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "1 querycancel", "1 reset"}));
}

TEST_F(WizardNavigation, APageThatRefusesActivationIsSkippedInBothDirections)
{
    m_answers[{2, PSN_SETACTIVE}] = -1;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_FIELDS}, {Next, ExpectPage(3), Back, ExpectPage(1), Cancel}), 0);
    EXPECT_EQ(m_journal,
              (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "3 init", "3 active", "3 back",
                     "3 kill", "2 active", "1 active", "1 querycancel", "1 reset", "2 reset", "3 reset"}));
}

TEST_F(WizardNavigation, TheLastPageIsShownWhenAllRefuseActivation)
{
    m_answers[{2, PSN_SETACTIVE}] = -1;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX}, {Next, ExpectPage(2), Cancel}), 0);
}

TEST_F(WizardNavigation, AnIdInAnswerToActivationNamesThePage)
{
    m_answers[{2, PSN_SETACTIVE}] = IDD_FIELDS;
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_FIELDS}, {Next, ExpectPage(3), Cancel}), 0);
}

TEST_F(WizardNavigation, BackOnTheFirstPageLeadsNowhere)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX},
                  {[this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_BACK, 0); }, ExpectPage(1), Cancel}),
              0);
}

TEST_F(WizardNavigation, TwoQuickClicksOnTheArrowGoBackTwice)
{
    const auto clickTwice = [this] {
        for (const UINT nMessage : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}) {
            PostMessageW(Button(kBackButtonId), nMessage, 0, MAKELPARAM(5, 5));
        }
    };
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_TEXT}, {Next, Next, clickTwice, ExpectPage(1), Cancel}), 0);
}

TEST_F(WizardNavigation, TheStartPageIsTheOneThatTheHeaderNames)
{
    PROPSHEETHEADERW header = Header({IDD_TEXT, IDD_BOX, IDD_FIELDS});
    header.nStartPage = 1;
    EXPECT_EQ(RunWith(header, {ExpectPage(2), Cancel}), 0);
    EXPECT_EQ(m_journal.front(), "2 init");
}

TEST_F(WizardNavigation, ThePageGetsTheFramesCopyOfItsRecord)
{
    const PROPSHEETPAGEW* pGot = nullptr;
    PROPSHEETHEADERW header = Header({IDD_TEXT});
    m_records[0].pfnDlgProc = [](HWND hwnd, UINT nMessage, WPARAM, LPARAM lParam) -> INT_PTR {
        if (nMessage == WM_INITDIALOG) {
            const auto& record = *reinterpret_cast<const PROPSHEETPAGEW*>(lParam);
            *reinterpret_cast<const PROPSHEETPAGEW**>(record.lParam) = &record;
            EXPECT_EQ(GetParent(hwnd), GetAncestor(hwnd, GA_ROOT));
        }
        return nMessage == WM_INITDIALOG;
    };
    m_records[0].lParam = reinterpret_cast<LPARAM>(&pGot);
    EXPECT_EQ(RunWith(header, {[&] {
                                   EXPECT_NE(pGot, nullptr);
                                   EXPECT_NE(pGot, m_records.data());
                                   EXPECT_EQ(pGot->pszTemplate, MAKEINTRESOURCEW(IDD_TEXT));
                                   EXPECT_EQ(GetParent(CurrentPage()), Frame());
                               },
                               Cancel}),
              0);
}

TEST_F(WizardNavigation, PagesCanBeChosenByIndexAndById)
{
    HWND hwndFirst = nullptr;
    EXPECT_EQ(
        Run({IDD_TEXT, IDD_BOX, IDD_FIELDS},
            {[&] { hwndFirst = CurrentPage(); }, [this] { EXPECT_TRUE(SendMessageW(Frame(), PSM_SETCURSEL, 2, 0)); },
             ExpectPage(3), [this] { EXPECT_TRUE(SendMessageW(Frame(), PSM_SETCURSELID, 0, IDD_BOX)); }, ExpectPage(2),
             [this] { EXPECT_FALSE(SendMessageW(Frame(), PSM_SETCURSEL, 7, 0)); }, ExpectPage(2),
             [&] {
                 EXPECT_EQ(SendMessageW(Frame(), PSM_HWNDTOINDEX, reinterpret_cast<WPARAM>(CurrentPage()), 0), 1);
                 EXPECT_EQ(SendMessageW(Frame(), PSM_INDEXTOHWND, 1, 0), reinterpret_cast<LRESULT>(CurrentPage()));
                 EXPECT_EQ(SendMessageW(Frame(), PSM_INDEXTOHWND, 0, 0), reinterpret_cast<LRESULT>(hwndFirst));
                 EXPECT_EQ(SendMessageW(Frame(), PSM_INDEXTOHWND, 9, 0), 0);
                 EXPECT_EQ(SendMessageW(Frame(), PSM_IDTOINDEX, 0, IDD_FIELDS), 2);
             },
             Cancel}),
        0);
}

TEST_F(WizardNavigation, AMissingTemplateFails)
{
    EXPECT_EQ(Run({IDD_TEXT, 999}, {}), -1);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_RESOURCE_NAME_NOT_FOUND});
    EXPECT_EQ(m_journal, Lines{});
}

TEST_F(WizardNavigation, NoPagesFail)
{
    EXPECT_EQ(RunWith(Header({}), {}), -1);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(WizardNavigation, AStartPageThatCannotBeMadeFails)
{
    EXPECT_EQ(Run({IDD_ODD, IDD_TEXT}, {}), -1);
}

TEST_F(WizardNavigation, ALaterPageThatCannotBeMadeEndsTheWizardAsFailed)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_ODD}, {Next}), -1);
}

TEST_F(WizardNavigation, WhatTheFrameDoesNotKnowIsRefused)
{
    PROPSHEETHEADERW header = Header({IDD_TEXT});
    m_records[0].dwFlags |= PSP_USECALLBACK;
    EXPECT_EQ(RunWith(header, {}), -1);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
}

TEST_F(WizardNavigation, QuittingEndsTheWizardAndIsPassedOn)
{
    EXPECT_EQ(Run({IDD_TEXT}, {[] { PostQuitMessage(42); }}), 0);
    MSG message = {};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 42u);
    EXPECT_EQ(Frame(), nullptr);
}

TEST_F(WizardNavigation, TheOwnerIsDisabledMeanwhile)
{
    const HWND hwndOwner = CreateWindowExW(0, L"Static", L"Owner", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                           nullptr, nullptr, nullptr);
    PROPSHEETHEADERW header = Header({IDD_TEXT});
    header.hwndParent = hwndOwner;
    EXPECT_EQ(RunWith(header, {[&] {
                                   EXPECT_FALSE(IsWindowEnabled(hwndOwner));
                                   EXPECT_EQ(GetWindow(Frame(), GW_OWNER), hwndOwner);
                               },
                               Cancel}),
              0);
    EXPECT_TRUE(IsWindowEnabled(hwndOwner));
    DestroyWindow(hwndOwner);
}

TEST_F(WizardNavigation, TheDesktopIsNoOwner)
{
    EXPECT_EQ(Run({IDD_TEXT}, {[this] {
                                   EXPECT_TRUE(IsWindowEnabled(GetDesktopWindow()));
                                   EXPECT_EQ(GetWindow(Frame(), GW_OWNER), nullptr);
                               },
                               Cancel}),
              0);
}
