#include "frame/Strokes.h"

// The library's headers are written for min and max as macros.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
} // namespace Gdiplus
#include <objidl.h>

#include <gdiplus.h>

#include <vector>

CStrokes::CStrokes()
{
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr);
}

CStrokes::~CStrokes()
{
    Gdiplus::GdiplusShutdown(m_nToken);
}

void CStrokes::Draw(HDC hdc, COLORREF color, float fWidth, std::initializer_list<STROKE_POINT> points)
{
    std::vector<Gdiplus::PointF> path;
    for (const STROKE_POINT& point : points) {
        path.emplace_back(point.x, point.y);
    }
    Gdiplus::Graphics graphics(hdc);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    const Gdiplus::Pen pen(Gdiplus::Color(GetRValue(color), GetGValue(color), GetBValue(color)), fWidth);
    graphics.DrawLines(&pen, path.data(), static_cast<INT>(path.size()));
}
