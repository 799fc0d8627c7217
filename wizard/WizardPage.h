// What every page of the wizard does: keep the shared data, load its texts, answer the frame.
#pragma once

#include "app/ground/Platform.h"
#include "wizard/WizardData.h"

#include <commctrl.h>
#include <prsht.h>

// Additions of Windows Vista that not every SDK declares.
#ifndef PSH_AEROWIZARD
#define PSH_AEROWIZARD 0x00004000
#endif
#ifndef PSWIZB_CANCEL
#define PSWIZB_CANCEL 0x00000010
#endif
#ifndef PSM_SHOWWIZBUTTONS
#define PSM_SHOWWIZBUTTONS (WM_USER + 138)
#endif

// The buttons that the pages show and hide while the user can still cancel.
constexpr DWORD kBackCancel = PSWIZB_BACK | PSWIZB_CANCEL;
constexpr DWORD kBackNextCancel = PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_CANCEL;

// Stores the shared data that a page's WM_INITDIALOG brings (lParam: the page's own record) in the
// page's user data.
void StoreWizardData(HWND hwndPage, LPARAM lParam);

// The shared data that StoreWizardData stored.
CWizardData& GetWizardData(HWND hwndPage);

// Sets a control's text from the string table. A string that cannot be loaded, or a missing
// control, leaves the text of the template.
void LoadControlText(HWND hwndPage, int nControlId, UINT nStringId);

// Shows, of the frame's buttons in dwAffected, those in dwShown and hides the others (PSWIZB_
// values). Posted: takes effect after the current message.
void ShowWizardButtons(HWND hwndPage, DWORD dwShown, DWORD dwAffected);

// Answers a WM_COMMAND or WM_NOTIFY of the page; the return value is the dialog procedure's.
INT_PTR AnswerMessage(HWND hwndPage, LRESULT nAnswer);

// What a page does of its own. Where it does nothing, null.
struct PAGE_HANDLERS
{
    int nBodyId;
    UINT nBodyStringId;
    // The rest of WM_INITDIALOG, and its answer: FALSE when the page has placed the keyboard focus itself.
    BOOL (*pfnInitDialog)(HWND hwndPage) = nullptr;
    // Shows the buttons that go with the controls. Called after WM_INITDIALOG, for PSN_SETACTIVE and, where
    // bHearsAddress is set, for IPN_FIELDCHANGED. Never null.
    void (*pfnUpdateWizardButtons)(HWND hwndPage) = nullptr;
    bool bHearsAddress = false;
    // WM_COMMAND. wParam is the message's own first parameter.
    void (*pfnCommand)(HWND hwndPage, UINT nControlId, WPARAM wParam, UINT nNotification) = nullptr;
    // PSN_WIZNEXT, and its answer: 0 to go on, anything else to stay.
    LRESULT (*pfnNext)(HWND hwndPage) = nullptr;
};

// The dialog procedure of a page with these handlers.
INT_PTR PageProc(const PAGE_HANDLERS& page, HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);
