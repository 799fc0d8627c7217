#include "driver/Reading.h"

namespace {

// Longer than any text of a window that is looked at; what is longer is cut.
constexpr int nTextCapacity = 8192;

// A program that does not answer for so long is busy. Short, because whoever asks waits meanwhile.
constexpr UINT nPatienceMs = 500;

} // namespace

std::wstring ClassOf(HWND hwnd)
{
    wchar_t szClass[256];
    const int nLength = GetClassNameW(hwnd, szClass, ARRAYSIZE(szClass));
    return {szClass, static_cast<size_t>(nLength)};
}

bool IsClass(HWND hwnd, PCWSTR pszClass)
{
    return CompareStringOrdinal(ClassOf(hwnd).c_str(), -1, pszClass, -1, TRUE) == CSTR_EQUAL;
}

// GetWindowText would send a message instead.
std::wstring TitleOf(HWND hwnd)
{
    std::wstring title(nTextCapacity, L'\0');
    title.resize(static_cast<size_t>(InternalGetWindowText(hwnd, title.data(), nTextCapacity)));
    return title;
}

std::optional<DWORD_PTR> Ask(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR nAnswer = 0;
    const bool bAnswered =
        SendMessageTimeoutW(hwnd, nMessage, wParam, lParam, SMTO_ABORTIFHUNG | SMTO_BLOCK, nPatienceMs, &nAnswer) != 0;
    return bAnswered ? std::optional(nAnswer) : std::nullopt;
}

std::optional<std::wstring> ReadText(HWND hwnd)
{
    std::wstring text(nTextCapacity, L'\0');
    const std::optional<DWORD_PTR> nLength =
        Ask(hwnd, WM_GETTEXT, nTextCapacity, reinterpret_cast<LPARAM>(text.data()));
    if (!nLength) {
        return std::nullopt;
    }
    text.resize(*nLength);
    return text;
}
