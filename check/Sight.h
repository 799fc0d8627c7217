// The installer's windows as somebody in front of the screen sees them.
#pragma once

#include "driver/Pages.h"

#include <windows.h>

#include <string>
#include <vector>

struct PART
{
    HWND hwnd;
    std::wstring szClass;
    std::wstring szText; // as the system keeps it: not what an edit holds
    int nId;             // of a button of the frame: as in Pages.h, whatever the system calls it
    RECT rect;           // pixels of the screen
    LONG nStyle;
    bool bVisible;
    bool bEnabled;

    bool IsKind(PCWSTR pszClass) const;
    bool IsPushButton() const;
};

// A window and all that is in it.
struct TREE
{
    PART window;
    std::vector<PART> parts; // in tab order; what is inside of one follows it
};

struct SIGHT
{
    TREE frame; // its window is null where there is no wizard
    const PAGE* pPage = nullptr;
    HWND hwndPage = nullptr;  // the dialog
    std::vector<TREE> boxes;  // message boxes
    std::vector<TREE> others; // other windows of the program with a title or something in them
    HWND hwndFocus = nullptr;
    HWND hwndCaret = nullptr;
    HWND hwndForeground = nullptr;

    int Number() const
    {
        return pPage != nullptr ? pPage->nNumber : 0;
    }
    const PART* Control(int nId) const;     // of the page
    const PART& Existing(int nId) const;    // the same; throws CLost where there is none
    const PART* FrameButton(int nId) const; // when it is to be seen
    UINT Buttons() const;
    std::wstring Status() const;
    // The id of what has the keyboard; a field of an address counts as the address.
    int FocusId() const;
    // The buttons that are drawn as the one that Enter presses.
    std::vector<const PART*> DefaultButtons() const;
    // The dialogs' controls that are to be seen, and what of the frame is.
    std::vector<const PART*> PageParts() const;
    std::vector<const PART*> FrameParts() const;
};

TREE TreeOf(HWND hwnd);

DWORD ProcessOf(HWND hwnd);

// The windows of a process that are to be seen, from top to bottom.
std::vector<HWND> WindowsOf(DWORD dwProcess);

SIGHT LookAt(DWORD dwProcess);

// "Back, Next, Cancel".
std::wstring ButtonNames(UINT nButtons);

// What a message box says, "caption: text".
std::wstring WordsOf(const TREE& box);

// Those of an address, from left to right.
std::vector<PART> FieldsOf(const PART& address);

// What an edit, or an address as far as it is filled in, holds.
std::wstring HoldsText(const PART& control);
bool IsTicked(const PART& control);

// Whether anything inside a window gives itself that name, to the eye or to a screen reader.
bool SaysOfItself(HWND hwnd, const std::wstring& szName);

// Every window inside, a line each.
std::wstring Describe(const TREE& tree);
