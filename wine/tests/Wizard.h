// A wizard on the screen, and a script that acts on it from within its own message loop.
#pragma once

#include "frame/PropertySheet.h"
#include "tests/resource.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

using Step = std::function<void()>;
using Steps = std::vector<Step>;
using Lines = std::vector<std::string>;

constexpr DWORD kAllButtons = PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_FINISH | PSWIZB_CANCEL;

class Wizard : public testing::Test
{
protected:
    // Shows a wizard of pages with these templates and runs the steps, one after the other, each when all
    // that came before has had its effect. Returns the wizard's result. A wizard that is still there
    // after the last step is a failure, and is closed.
    INT_PTR Run(const std::vector<int>& dialogs, Steps steps);

    // What the wizard's pages answer: (number of the page from 1, notification) to answer. 0 by default.
    std::map<std::pair<int, UINT>, LRESULT> m_answers;

    // What a page does in WM_INITDIALOG, with its result; and when it is activated.
    std::function<BOOL(int nPage, HWND hwndPage)> m_onInitDialog;
    std::function<void(int nPage, HWND hwndPage)> m_onActivation;

    // What the pages were told, as "1 init", "1 active", "1 kill", "1 back", "1 next", "1 finish", "1 querycancel", and
    // "1 click" of a button of their own.
    Lines m_journal;

    // Steps. Windows are meant by the ids of the frame's buttons and of the page's controls.
    Step Click(int nId);
    Step PressByMessage(int nButton); // PSBTN_ value
    Step Press(WORD nKey);
    Step PressWithShift(WORD nKey);
    Step PressWithAlt(WORD nKey);
    Step ShowButtons(DWORD dwButtons, DWORD dwMask);
    Step FocusOn(int nId);
    Step ExpectPage(int nNumber);
    Step ExpectFocus(int nId);
    Step ExpectButtons(const char* pszNames); // "Back Next Cancel"

    HWND Frame() const;
    HWND CurrentPage() const;
    HWND Window(int nId) const;
    std::string VisibleButtons() const;

private:
    static INT_PTR CALLBACK DialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    static void CALLBACK OnTimer(HWND hwnd, UINT nMessage, UINT_PTR nTimer, DWORD dwTime);
    INT_PTR OnNotify(int nPage, HWND hwnd, const PSHNOTIFY& notification);
    void NextStep();

    Steps m_steps;
    size_t m_nStep = 0;
};
