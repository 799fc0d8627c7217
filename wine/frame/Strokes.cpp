#include "frame/Strokes.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

float DistanceToSegment(STROKE_POINT p, STROKE_POINT a, STROKE_POINT b)
{
    const float dx = b.x - a.x;
    const float dy = b.y - a.y;
    const float fAlong = ((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy);
    const float f = std::clamp(fAlong, 0.0f, 1.0f);
    return std::hypot(p.x - a.x - f * dx, p.y - a.y - f * dy);
}

float DistanceToLine(STROKE_POINT p, std::initializer_list<STROKE_POINT> points)
{
    float fNearest = HUGE_VALF;
    for (const auto* pPoint = points.begin(); std::next(pPoint) != points.end(); ++pPoint) {
        fNearest = std::min(fNearest, DistanceToSegment(p, pPoint[0], pPoint[1]));
    }
    return fNearest;
}

BYTE Mix(BYTE nOld, BYTE nNew, float fShare)
{
    return static_cast<BYTE>(
        std::lround(static_cast<float>(nOld) * (1.0f - fShare) + static_cast<float>(nNew) * fShare));
}

COLORREF Mix(COLORREF old, COLORREF color, float fShare)
{
    return RGB(Mix(GetRValue(old), GetRValue(color), fShare), Mix(GetGValue(old), GetGValue(color), fShare),
               Mix(GetBValue(old), GetBValue(color), fShare));
}

// The smallest rectangle of pixels that such a line touches.
RECT BoundsOf(float fWidth, std::initializer_list<STROKE_POINT> points)
{
    const auto byX = [](STROKE_POINT a, STROKE_POINT b) { return a.x < b.x; };
    const auto byY = [](STROKE_POINT a, STROKE_POINT b) { return a.y < b.y; };
    const auto [pLeft, pRight] = std::minmax_element(points.begin(), points.end(), byX);
    const auto [pTop, pBottom] = std::minmax_element(points.begin(), points.end(), byY);
    return {static_cast<LONG>(std::floor(pLeft->x - fWidth)), static_cast<LONG>(std::floor(pTop->y - fWidth)),
            static_cast<LONG>(std::ceil(pRight->x + fWidth)) + 1,
            static_cast<LONG>(std::ceil(pBottom->y + fWidth)) + 1};
}

} // namespace

void DrawStroke(HDC hdc, COLORREF color, float fWidth, std::initializer_list<STROKE_POINT> points)
{
    const RECT bounds = BoundsOf(fWidth, points);
    for (LONG y = bounds.top; y < bounds.bottom; ++y) {
        for (LONG x = bounds.left; x < bounds.right; ++x) {
            const float fDistance = DistanceToLine({static_cast<float>(x), static_cast<float>(y)}, points);
            // How much of the pixel the line covers.
            const float fShare = std::clamp(fWidth / 2.0f + 0.5f - fDistance, 0.0f, 1.0f);
            if (fShare > 0.0f) {
                SetPixelV(hdc, x, y, Mix(GetPixel(hdc, x, y), color, fShare));
            }
        }
    }
}
