// A page of the wizard as a real dialog, in a plain window that stands for the frame.
#pragma once

#include "tests/kit/Test.h"
#include "tests/unit/wizard/Pages.h"

#include <map>
#include <set>
#include <string>
#include <vector>

std::ostream& operator<<(std::ostream& out, const Buttons& buttons);

// A message that a control of the page got, or, as that of control 0, the page itself.
struct ControlMessage
{
    int nControlId;
    UINT nMessage;
    WPARAM wParam;
    LPARAM lParam;
    std::wstring strText; // of WM_SETTEXT
};

// Creates the page from its template with the given data in its page record. Messages that the page
// posts wait until Pump. The texts of the status lines leave "status "text"" in the journal. There is
// one page at a time.
class PageWindow
{
public:
    // Leaves out the controls with these ids.
    PageWindow(const Page& page, CWizardData& data, std::vector<int> missing = {});
    ~PageWindow();
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;

    HWND Window() const
    {
        return m_hwndPage;
    }
    HWND Control(int nControlId) const
    {
        return GetDlgItem(m_hwndPage, nControlId);
    }

    // What the page returned for WM_INITDIALOG.
    INT_PTR InitResult() const
    {
        return m_nInitResult;
    }

    // The page's answers. Each also checks that the message counts as handled.
    LRESULT Notify(UINT nCode);
    LRESULT Command(int nControlId, int nNotification);

    // What the page returns for any other message.
    INT_PTR Send(UINT nMessage)
    {
        return m_pfnDialogProc(m_hwndPage, nMessage, 0, 0);
    }

    // Dispatches what was posted.
    void Pump();

    // What the page told the frame since the last call, posted messages included.
    ButtonsList TakeButtons();

    // The last of them; none when there was nothing.
    Buttons LastButtons();

    std::wstring Text(int nControlId) const;
    void SetText(int nControlId, PCWSTR pszText) const;
    void Type(int nControlId, const std::wstring& strText) const;
    void Click(int nControlId) const;

    // The messages of these kinds that the control got since the page was created, in their order.
    std::vector<ControlMessage> MessagesTo(int nControlId, const std::set<UINT>& kinds) const;

    // The texts that were set into the control since the page was created.
    std::vector<std::wstring> TextsOf(int nControlId) const;

private:
    static LRESULT CALLBACK FrameProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK ControlProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    static INT_PTR CALLBACK DialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    void PrepareControls(HWND hwndPage);
    LRESULT Answered(INT_PTR nResult) const;

    static inline PageWindow* s_pCurrent = nullptr;

    DLGPROC m_pfnDialogProc;
    PROPSHEETPAGEW m_record = {};
    std::vector<int> m_missing;
    std::map<HWND, WNDPROC> m_controlProcs;
    HWND m_hwndFrame = nullptr;
    HWND m_hwndPage = nullptr;
    INT_PTR m_nInitResult = -77;
    bool m_bPumping = false;
    ButtonsList m_buttons;
    std::vector<ControlMessage> m_messages;
};
