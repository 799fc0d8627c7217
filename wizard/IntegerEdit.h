// An edit control that takes decimal digits only, typed or pasted.
#pragma once

#include "app/ground/Platform.h"

#include <commctrl.h>

class CIntegerEdit
{
public:
    // Makes the edit control take digits only, at most nLimit of them, and empties it. A control
    // that cannot be subclassed ends the process with a report of pszContext (the calling method)
    // and pszFailure.
    static void Attach(HWND hwndCtl, UINT nLimit, PCWSTR pszContext, PCWSTR pszFailure);

    // The subclass procedure, under the control's own handle as id. Takes itself off when the
    // control is destroyed.
    static LRESULT CALLBACK SubclassProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam, UINT_PTR nSubclassId,
                                         DWORD_PTR dwRefData);

private:
    static BOOL SetWindowSubclass(HWND hwndCtl, DWORD_PTR dwRefData);
    static void PasteDigits(HWND hwnd);
};
