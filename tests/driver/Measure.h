// How much room a control has for its text, and how much the text takes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

// Rectangles are pixels of the screen.
struct MEASURE
{
    RECT room;   // where the control may draw its text
    RECT extent; // the text as the system measures it, wrapped as the control wraps it
    RECT ink;    // what is really drawn of it, were there no end to the room; empty for a text of blanks
};

// Measures a static, a button with a text or an edit of another program as if it said `text`. A font is no
// window's to tell to another program, so it is named: "page" is that of the dialog templates, "frame" and "title"
// are those of the wizard's frame, "box" is that of message boxes. Nothing for another font and for a control that
// shows no text of its own.
std::optional<MEASURE> Measure(HWND hwnd, std::string_view font, const std::wstring& text);
