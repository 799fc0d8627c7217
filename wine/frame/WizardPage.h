// One page of a wizard: its record, its template, its window once it was shown.
#pragma once

#include "frame/PropertySheet.h"

#include <string>
#include <vector>

class CWizardPage
{
public:
    // The frame keeps a copy of the record; that copy is what the page gets with WM_INITDIALOG.
    explicit CWizardPage(const PROPSHEETPAGEW& record);
    CWizardPage(const CWizardPage&) = delete;
    CWizardPage& operator=(const CWizardPage&) = delete;

    // Whether there is a template; the rest is for pages that have one.
    bool IsLoaded() const
    {
        return !m_template.empty();
    }

    SIZE Size() const;

    // Empty for a page without one.
    const std::wstring& HeaderTitle() const
    {
        return m_szHeaderTitle;
    }

    // Makes the page's window, hidden, in rect of the frame. False when it cannot.
    bool Create(HWND hwndFrame, const RECT& rect);

    // Null until Create.
    HWND Window() const
    {
        return m_hwnd;
    }

    // Whether the page, in its WM_INITDIALOG, put the focus where it wants it. Asked once, at the first
    // showing: at every later one the frame places the focus.
    bool TakePlacedFocus();

    // A page may send the focus away, on to the frame's buttons, when it is first shown. It then does not
    // get the focus at later showings either.
    bool LeavesFocus() const
    {
        return m_bLeavesFocus;
    }

    void NoteFocusLeft()
    {
        m_bLeavesFocus = true;
    }

    // Sends a notification of the frame to the page; returns the page's answer.
    LRESULT Notify(UINT nCode) const;

private:
    static INT_PTR CALLBACK FirstDialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    PROPSHEETPAGEW m_record;
    std::vector<BYTE> m_template;
    HWND m_hwnd = nullptr;
    std::wstring m_szHeaderTitle;
    bool m_bPlacedFocus = false;
    bool m_bLeavesFocus = false;
};
