#include "check/Hands.h"

#include "check/Sight.h"
#include "check/Stopping.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// A practised typist's pace, with room for programs that look at every key.
constexpr DWORD kBetweenKeys = 12;

// So that what the mouse comes over and what it presses can follow.
constexpr DWORD kAroundClicks = 40;

INPUT KeyboardInput(WORD nKey, WORD nScan, DWORD dwFlags)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = nKey;
    input.ki.wScan = nScan;
    input.ki.dwFlags = dwFlags;
    return input;
}

INPUT KeyInput(WORD nKey, DWORD dwFlags)
{
    return KeyboardInput(nKey, static_cast<WORD>(MapVirtualKeyW(nKey, MAPVK_VK_TO_VSC)), dwFlags);
}

INPUT CharacterInput(wchar_t c, DWORD dwFlags)
{
    return KeyboardInput(0, c, KEYEVENTF_UNICODE | dwFlags);
}

INPUT MouseInput(DWORD dwFlags, LONG x = 0, LONG y = 0)
{
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = x;
    input.mi.dy = y;
    input.mi.dwFlags = dwFlags;
    return input;
}

void Send(std::vector<INPUT> inputs)
{
    if (SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) != inputs.size()) {
        throw CLost{L"the system does not take keys and clicks from this program"};
    }
}

bool IsInFront(DWORD dwProcess)
{
    DWORD dwFront = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &dwFront);
    return dwFront == dwProcess;
}

// Keys must reach nobody else.
void FaceProcess(DWORD dwProcess)
{
    if (IsInFront(dwProcess)) {
        return;
    }
    const std::vector<HWND> windows = WindowsOf(dwProcess);
    const auto uppermost = std::ranges::find_if(windows, [](HWND hwnd) { return IsWindowEnabled(hwnd) != FALSE; });
    if (uppermost == windows.end() || !BringForward(*uppermost) || !IsInFront(dwProcess)) {
        throw CLost{L"another window has the keyboard"};
    }
}

INPUT MoveInput(LONG x, LONG y)
{
    constexpr LONG kWhole = 65535;
    const LONG nLeft = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const LONG nTop = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const LONG nWidth = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    const LONG nHeight = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    return MouseInput(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK,
                      MulDiv((2 * (x - nLeft)) + 1, kWhole + 1, 2 * nWidth),
                      MulDiv((2 * (y - nTop)) + 1, kWhole + 1, 2 * nHeight));
}

// Another program may have the clipboard for a moment.
bool OpenClipboardSoon()
{
    return WaitFor(2000, [] { return OpenClipboard(nullptr) != FALSE; });
}

// The clipboard owns what it takes.
bool Copy(UINT nFormat, HANDLE hData)
{
    if (hData == nullptr || !OpenClipboardSoon()) {
        return false;
    }
    EmptyClipboard();
    const bool bCopied = SetClipboardData(nFormat, hData) != nullptr;
    CloseClipboard();
    return bCopied;
}

} // namespace

void Press(DWORD dwProcess, WORD nKey, WORD nHeld)
{
    FaceProcess(dwProcess);
    std::vector<INPUT> inputs;
    if (nHeld != 0) {
        inputs.push_back(KeyInput(nHeld, 0));
    }
    inputs.push_back(KeyInput(nKey, 0));
    inputs.push_back(KeyInput(nKey, KEYEVENTF_KEYUP));
    if (nHeld != 0) {
        inputs.push_back(KeyInput(nHeld, KEYEVENTF_KEYUP));
    }
    Send(std::move(inputs));
    Pause(kBetweenKeys);
}

void Type(DWORD dwProcess, const std::wstring& szText)
{
    for (const wchar_t c : szText) {
        FaceProcess(dwProcess);
        Send({CharacterInput(c, 0), CharacterInput(c, KEYEVENTF_KEYUP)});
        Pause(kBetweenKeys);
    }
}

void Click(const RECT& rect)
{
    const INPUT move = MoveInput((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    Send({move});
    Pause(kAroundClicks);
    // In one go with the click: the mouse that lies on the desk may tell its place in between.
    Send({move, MouseInput(MOUSEEVENTF_LEFTDOWN), MouseInput(MOUSEEVENTF_LEFTUP)});
    Pause(kAroundClicks);
}

void MoveMouseAway()
{
    Send({MoveInput(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) / 2)});
}

bool BringForward(HWND hwnd)
{
    if (SetForegroundWindow(hwnd) && WaitFor(300, [&] { return GetForegroundWindow() == hwnd; })) {
        return true;
    }
    // The system lets the thread do it that shares its input with the one in front.
    const DWORD dwOwn = GetCurrentThreadId();
    const DWORD dwFront = GetWindowThreadProcessId(GetForegroundWindow(), nullptr);
    AttachThreadInput(dwOwn, dwFront, TRUE);
    SetForegroundWindow(hwnd);
    AttachThreadInput(dwOwn, dwFront, FALSE);
    return WaitFor(500, [&] { return GetForegroundWindow() == hwnd; });
}

bool CopyText(const std::wstring& szText)
{
    const size_t cb = (szText.size() + 1) * sizeof(WCHAR);
    const HGLOBAL hText = GlobalAlloc(GMEM_MOVEABLE, cb);
    if (void* const p = hText != nullptr ? GlobalLock(hText) : nullptr) {
        std::memcpy(p, szText.c_str(), cb);
        GlobalUnlock(hText);
    }
    return Copy(CF_UNICODETEXT, hText);
}

bool CopyPicture()
{
    return Copy(CF_BITMAP, CreateBitmap(2, 2, 1, 1, nullptr));
}

std::optional<std::wstring> ClipboardText()
{
    std::optional<std::wstring> szText;
    if (!OpenClipboardSoon()) {
        return szText;
    }
    if (const HANDLE hData = GetClipboardData(CF_UNICODETEXT)) {
        if (const auto* const psz = static_cast<const WCHAR*>(GlobalLock(hData))) {
            szText = psz;
            GlobalUnlock(hData);
        }
    }
    CloseClipboard();
    return szText;
}

CKeptClipboard::CKeptClipboard() : m_szText(ClipboardText()) {}

// NOLINTNEXTLINE(bugprone-exception-escape): no wait throws in the scope of a CUnstoppable
CKeptClipboard::~CKeptClipboard()
{
    const CUnstoppable tidying;
    if (m_szText) {
        CopyText(*m_szText);
    } else if (OpenClipboardSoon()) {
        EmptyClipboard();
        CloseClipboard();
    }
}
