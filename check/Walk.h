// Somebody who goes through the wizard. What cannot be done with keys and clicks, as it should be, is then done by
// message, so that one thing that does not hold does not hide all that come after it.
#pragma once

#include "check/Check.h"
#include "check/Installer.h"

#include <functional>

class CWalk
{
public:
    explicit CWalk(CHECK& check);              // starts the installer and waits for its first page
    CWalk(CHECK& check, const CPath& program); // another copy of it

    CHECK& Check() const
    {
        return m_check;
    }
    CInstaller& Program()
    {
        return m_program;
    }
    SIGHT Look() const
    {
        return m_program.Look();
    }

    // All of these throw CLost when it does not come to that.
    SIGHT WaitUntil(const std::wstring& szWhat, const std::function<bool(const SIGHT&)>& seen,
                    DWORD dwMilliseconds = 10000) const;
    SIGHT WaitForPage(int nPage, DWORD dwMilliseconds = 10000) const;
    TREE WaitForBox(DWORD dwMilliseconds = 60000) const;
    // Until nothing changes any more.
    SIGHT Rest() const;

    void Press(WORD nKey, WORD nHeld = 0) const;
    void Type(const std::wstring& szText) const;
    void ClickControl(int nId, int nTimes = 1) const;
    // Empties a field of the page, and leaves the keyboard there.
    void Empty(int nId) const;
    void Enter(int nId, const std::wstring& szText) const;
    // The same in an address: all four numbers.
    void EnterAddress(const std::wstring& szAddress) const;

    // Whether the page's buttons became these.
    bool HasButtons(UINT nButtons, DWORD dwMilliseconds = 3000) const;
    // Whether a field of the page came to hold that.
    bool Holds(int nId, const std::wstring& szText, DWORD dwMilliseconds = 3000) const;
    std::wstring TextOf(int nId) const;

    void Dismiss(const TREE& box) const;
    void Tick(bool bTicked = true) const;
    // Presses Next, which is to lead to the next page.
    SIGHT GoOn(DWORD dwMilliseconds = 60000) const;
    // From an earlier page, filling in what is asked for; the watch then is at that address of this computer.
    void GoTo(int nPage, const std::wstring& szPort) const;
    // By message, without being asked for anything. From page 8 on.
    SIGHT JumpTo(int nPage) const;
    // The button's message, whether or not it is to be seen.
    void PressButton(int nButton) const;

private:
    CHECK& m_check;
    CInstaller m_program;
};

// Says of the page that is shown all that the claims of each page say.
void LookAtPage(const CWalk& walk, int nPage);

// The texts of a dialog that have no room, or nothing; pszFont as in driver/Measure.h.
std::wstring CutTexts(const std::vector<const PART*>& parts, PCSTR pszFont);
