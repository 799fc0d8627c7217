// Thin lines with smooth edges, which the arrow and the cross of a caption are made of.
#pragma once

#include <windows.h>

#include <initializer_list>

// A connected line through these points, in pixels; an integer is the middle of a pixel.
struct STROKE_POINT
{
    float x, y;
};

// Smooth drawing works while at least one of these exists.
class CStrokes
{
public:
    CStrokes();
    ~CStrokes();
    CStrokes(const CStrokes&) = delete;
    CStrokes& operator=(const CStrokes&) = delete;

    static void Draw(HDC hdc, COLORREF color, float fWidth, std::initializer_list<STROKE_POINT> points);

private:
    ULONG_PTR m_nToken = 0;
};
