#include "check/Hands.h"

#include "check/Stopping.h"

#include <cstring>
#include <vector>

namespace {

// A practised typist's pace, with room for programs that look at every key.
constexpr DWORD kBetweenKeys = 12;

// Two clicks at one place are a double click to the system unless more time is between them.
constexpr DWORD kBetweenClicks = 40;

INPUT KeyInput(WORD nKey, DWORD dwFlags)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = nKey;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(nKey, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = dwFlags;
    return input;
}

INPUT CharacterInput(wchar_t c, DWORD dwFlags)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wScan = c;
    input.ki.dwFlags = KEYEVENTF_UNICODE | dwFlags;
    return input;
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

struct SEARCH
{
    DWORD dwProcess;
    HWND hwnd;
};

// The uppermost window that takes input.
BOOL CALLBACK FindWindowOf(HWND hwnd, LPARAM lParam)
{
    auto& search = *reinterpret_cast<SEARCH*>(lParam);
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    if (dwProcess != search.dwProcess || !IsWindowVisible(hwnd) || !IsWindowEnabled(hwnd)) {
        return TRUE;
    }
    search.hwnd = hwnd;
    return FALSE;
}

// Keys must reach nobody else.
void FaceProcess(DWORD dwProcess)
{
    if (IsInFront(dwProcess)) {
        return;
    }
    SEARCH search = {dwProcess, nullptr};
    EnumWindows(FindWindowOf, reinterpret_cast<LPARAM>(&search));
    if (search.hwnd == nullptr || !BringForward(search.hwnd) || !IsInFront(dwProcess)) {
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
                      MulDiv(2 * (x - nLeft) + 1, kWhole + 1, 2 * nWidth),
                      MulDiv(2 * (y - nTop) + 1, kWhole + 1, 2 * nHeight));
}

// Another program may have the clipboard for a moment.
bool OpenClipboardSoon()
{
    return WaitFor(2000, [] { return OpenClipboard(nullptr) != FALSE; });
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

void Click(const RECT& rect, int nTimes)
{
    const INPUT move = MoveInput((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    Send({move});
    for (int n = 0; n < nTimes; ++n) {
        Pause(kBetweenClicks);
        // In one go with the click: the mouse that lies on the desk may tell its place in between.
        Send({move, MouseInput(MOUSEEVENTF_LEFTDOWN), MouseInput(MOUSEEVENTF_LEFTUP)});
    }
    Pause(kBetweenClicks);
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
    if (hText == nullptr || !OpenClipboardSoon()) {
        return false;
    }
    std::memcpy(GlobalLock(hText), szText.c_str(), cb);
    GlobalUnlock(hText);
    EmptyClipboard();
    const bool bCopied = SetClipboardData(CF_UNICODETEXT, hText) != nullptr;
    CloseClipboard();
    return bCopied;
}

bool CopyPicture()
{
    const HBITMAP hBitmap = CreateBitmap(2, 2, 1, 1, nullptr);
    if (hBitmap == nullptr || !OpenClipboardSoon()) {
        return false;
    }
    EmptyClipboard();
    const bool bCopied = SetClipboardData(CF_BITMAP, hBitmap) != nullptr;
    CloseClipboard();
    return bCopied;
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
