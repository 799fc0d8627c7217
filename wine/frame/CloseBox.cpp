#include "frame/CloseBox.h"

#include "frame/Owned.h"
#include "frame/Strokes.h"

#include <utility>

namespace {

constexpr COLORREF kHotGround = RGB(232, 17, 35);
constexpr COLORREF kPressedGround = RGB(241, 112, 122);

// The cross is 10 pixels wide in a box of 29.
constexpr float kCrossToBox = 10.0f / 29.0f;

} // namespace

bool CCloseBox::SetHot(bool bHot)
{
    return std::exchange(m_bHot, bHot) != bHot;
}

void CCloseBox::Press()
{
    m_bPressed = true;
}

bool CCloseBox::Release()
{
    return std::exchange(m_bPressed, false) && m_bHot;
}

void CCloseBox::Draw(HDC hdc, const RECT& box, COLORREF color) const
{
    if (m_bHot) {
        const CBrushHandle hBrush(CreateSolidBrush(m_bPressed ? kPressedGround : kHotGround));
        FillRect(hdc, &box, hBrush.get());
        color = RGB(255, 255, 255);
    }
    const float fHeight = static_cast<float>(box.bottom - box.top);
    const float fHalf = fHeight * kCrossToBox / 2.0f;
    const float x = static_cast<float>(box.left + box.right - 1) / 2.0f;
    const float y = static_cast<float>(box.top + box.bottom - 1) / 2.0f;
    const float fWidth = fHeight / 29.0f;
    DrawStroke(hdc, color, fWidth, {{x - fHalf, y - fHalf}, {x + fHalf, y + fHalf}});
    DrawStroke(hdc, color, fWidth, {{x - fHalf, y + fHalf}, {x + fHalf, y - fHalf}});
}
