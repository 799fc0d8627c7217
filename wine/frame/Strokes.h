// Thin lines with smooth edges, which the arrow and the cross of a caption are made of. The drawing
// libraries at hand draw them with steps.
#pragma once

#include <windows.h>

#include <initializer_list>

// In pixels; an integer is the middle of a pixel.
struct STROKE_POINT
{
    float x, y;
};

// Draws a line that connects these points, with round ends.
void DrawStroke(HDC hdc, COLORREF color, float fWidth, std::initializer_list<STROKE_POINT> points);
