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

using Steps = std::vector<std::function<void()>>;
using Lines = std::vector<std::string>;

class WizardTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Shows a wizard of pages with these templates and runs the steps, one after the other, each when all
    // that came before has had its effect. Returns the wizard's result. A wizard that is still there
    // after the last step is a failure, and is closed.
    INT_PTR Run(std::vector<int> dialogs, Steps steps);

    // The same for a header of the test's own.
    INT_PTR RunWith(const PROPSHEETHEADERW& header, Steps steps);

    // The header that the first Run uses; its records are those that the test may change.
    PROPSHEETHEADERW Header(std::vector<int> dialogs);

    // What the wizard's pages answer: (number of the page from 1, notification) to answer. 0 by default.
    std::map<std::pair<int, UINT>, LRESULT> m_answers;

    // What a page's WM_INITDIALOG does beside telling the journal; its result is that of the message.
    std::function<INT_PTR(int nPage, HWND hwndPage)> m_onInitDialog;

    // Called with each notification after it was noted.
    std::function<void(int nPage, HWND hwndPage, UINT nCode)> m_onNotify;

    // Called with each command of a page's controls.
    std::function<void(int nPage, WORD nId)> m_onCommand;

    // Each message of interest to a page, as "1 init", "1 active", "1 kill", "1 back", "1 next", "1 finish",
    // "1 querycancel", "1 reset".
    Lines m_journal;

    std::vector<PROPSHEETPAGEW> m_records;

    // In steps.
    HWND Frame() const;
    HWND CurrentPage() const;
    int CurrentNumber() const;
    HWND Button(int nId) const;
    HWND Control(int nId) const;
    std::string VisibleButtons() const; // "Back Next Cancel"
    std::string HeaderTitle() const;
    int FocusId() const;

    void Click(int nButtonId) const;
    void Key(WORD nKey) const;
    void KeyWith(WORD nModifier, WORD nKey) const; // VK_SHIFT or VK_MENU
    void ShowButtons(DWORD dwButtons, DWORD dwMask) const;

private:
    static INT_PTR CALLBACK DialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD);
    INT_PTR OnNotify(int nPage, HWND hwnd, const PSHNOTIFY& notification);
    void NextStep();

    Steps m_steps;
    size_t m_nStep = 0;
};

std::string TextOf(HWND hwnd);
