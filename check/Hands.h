// Keyboard and mouse, as the devices themselves send them, and the clipboard.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

// Presses a key, with others held down meanwhile. Nothing is sent, and CLost thrown, unless a window of that process
// has the keyboard or can be given it.
void Press(DWORD dwProcess, WORD nKey, WORD nHeld = 0);

// Types characters as a keyboard of any layout would.
void Type(DWORD dwProcess, const std::wstring& szText);

// Clicks into the middle of a rectangle of the screen.
void Click(const RECT& rect);

// To a corner, so that nothing looks hovered over.
void MoveMouseAway();

// Brings a window before all others. False when the system did not let it.
bool BringForward(HWND hwnd);

bool CopyText(const std::wstring& szText);
// Something that no text can be made of.
bool CopyPicture();

// The clipboard's text now, and that again at the end of the scope; other contents are lost.
class CKeptClipboard
{
public:
    CKeptClipboard();
    ~CKeptClipboard();
    CKeptClipboard(const CKeptClipboard&) = delete;
    CKeptClipboard& operator=(const CKeptClipboard&) = delete;

private:
    std::optional<std::wstring> m_szText;
};

std::optional<std::wstring> ClipboardText();
