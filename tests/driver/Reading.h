// What windows of other programs are and hold. The first ones the system answers itself, so a program that is busy does
// not hold them up.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

std::wstring ClassOf(HWND hwnd);

// Windows compares the names of classes without regard to case.
bool IsClass(HWND hwnd, PCWSTR pszClass);

// The text that the system keeps for the window; of a static or a button that is what it says. A longer one than that
// of any window that is looked at is cut.
std::wstring TitleOf(HWND hwnd);

// Sends a message. Nothing when the program is too busy to answer.
std::optional<DWORD_PTR> Ask(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

// The text that the control itself holds, as edits do. Nothing when the program is too busy to answer.
std::optional<std::wstring> ReadText(HWND hwnd);
