// Stands in for the platform's header of the same name: subclassed windows.
#pragma once

#include <windows.h>

typedef LRESULT (*SUBCLASSPROC)(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam, UINT_PTR nSubclassId,
                                DWORD_PTR dwRefData);

BOOL SetWindowSubclass(HWND hwnd, SUBCLASSPROC pfnSubclass, UINT_PTR nSubclassId, DWORD_PTR dwRefData);
BOOL RemoveWindowSubclass(HWND hwnd, SUBCLASSPROC pfnSubclass, UINT_PTR nSubclassId);
LRESULT DefSubclassProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
