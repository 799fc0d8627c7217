// The cross at the right of the caption. The frame paints it and tells it of the mouse.
#pragma once

#include <windows.h>

class CCloseBox
{
public:
    // The mouse is over it or not. True when it must be painted anew.
    bool SetHot(bool bHot);

    // The mouse button went down on it.
    void Press();

    // The mouse button came up. True when that closes: it went down and came up over the box.
    bool Release();

    bool IsPressed() const
    {
        return m_bPressed;
    }

    void Draw(HDC hdc, const RECT& box, COLORREF color) const;

private:
    bool m_bHot = false;
    bool m_bPressed = false;
};
