// Texts of a page that change while its handler works.
#pragma once

#include <windows.h>

// Makes a new text of any static of the page seen at once, as it is on Windows, though the page does not
// return to the message loop for long. Wine paints it at once too, but shows what was painted only when the
// program waits for messages, or paints something else a while later.
void ShowTextsAtOnce(HWND hwndPage);
