// The arrow in the frame's caption: a button in every respect but its looks.
#pragma once

#include <windows.h>

class CBackButton
{
public:
    // Makes the button, hidden, in the frame. The frame passes its WM_DRAWITEM on to Draw.
    bool Create(HWND hwndFrame, int nId, const RECT& rect);

    HWND Window() const
    {
        return m_hwnd;
    }

    void Draw(const DRAWITEMSTRUCT& item) const;

private:
    static LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    void SetHot(bool bHot);
    COLORREF Color(UINT nItemState) const;

    HWND m_hwnd = nullptr;
    WNDPROC m_pfnOriginal = nullptr;
    bool m_bHot = false; // the mouse is over it
};
