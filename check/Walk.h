// Somebody who goes through the wizard. Fields, boxes and message boxes take keys and clicks; pages are turned by
// message, so that one thing that does not hold does not hide all that come after it.
#pragma once

#include "check/Check.h"
#include "check/Installer.h"

#include <functional>

class CWalk
{
public:
    enum COMES
    {
        kWizard,
        kAnything // or nothing: what is no wizard is walked as well
    };

    // Starts the installer, or another copy of it, and waits for its first page.
    explicit CWalk(CHECK& check);
    CWalk(CHECK& check, const CPath& program, COMES nComes = kWizard);

    CHECK& Check() const
    {
        return m_check;
    }
    CAnswers& Answers() const
    {
        return m_check.answers;
    }
    const CInstaller& Program() const
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
    void WaitForStart() const;
    // Every message box is met here, for it is measured here.
    TREE WaitForBox(DWORD dwMilliseconds = 60000) const;
    // Until nothing changes any more.
    SIGHT Rest() const;

    void Press(WORD nKey, WORD nHeld = 0) const;
    void Type(const std::wstring& szText) const;
    void ClickControl(int nId) const;
    // Empties a field of the page, and leaves the keyboard there.
    void Empty(int nId) const;
    void Enter(int nId, const std::wstring& szText) const;
    // The same in the address of page 5, in one of its fields and in all four.
    std::vector<PART> AddressFields() const;
    void EmptyField(const PART& field) const;
    void EnterAddress(const std::wstring& szAddress) const;

    // Whether the page's buttons became these.
    bool HasButtons(UINT nButtons) const;
    // Whether a field of the page came to hold that.
    bool Holds(int nId, const std::wstring& szText) const;
    std::wstring TextOf(int nId) const;

    void Dismiss(const TREE& box) const;
    void Tick(bool bTicked = true) const;
    // Next, which is to lead to the next page.
    SIGHT GoOn() const;
    // From an earlier page, filling in what is asked for; the watch then is at that address of this computer.
    void GoTo(int nPage, const std::wstring& szPort) const;
    void GoBackTo(int nPage) const;
    // Asks for a page from the eighth on by its number; does not wait for it.
    void JumpTo(int nPage) const;
    // The button's message, whether or not it is to be seen.
    void PressButton(int nButton) const;

    // On page 7: the dialog that asks for a package.
    TREE OpenFileDialog() const;
    void LeaveFileDialog() const;

    // Says of a wizard that was just cancelled whether it left nothing and ended well.
    void ExpectEnd(PCWSTR pszClaim) const;

private:
    CHECK& m_check;
    CInstaller m_program;
};

// Says of the page that is shown all that the claims of each page say.
void LookAtPage(const CWalk& walk, int nPage);

// Compares what page 1 is shown with and the icon in the program's resources.
void LookAtIcons(const CWalk& walk);

// Says whether the frame's buttons became these.
void LookAtButtons(const CWalk& walk, const std::wstring& szClaim, UINT nButtons);

// Ticks the box of the page that is shown, and leaves it so: Next appears with the tick and goes with it.
void LookAtTick(const CWalk& walk);

// The texts of a message box that have no room, or "nothing".
std::wstring CutTexts(const TREE& box);
