#include "frame/FrameKeyboard.h"

#include "frame/WizardFrame.h"

namespace {

bool Wants(HWND hwndFocus, LRESULT nCode, const MSG& message)
{
    return (SendMessageW(hwndFocus, WM_GETDLGCODE, message.wParam, reinterpret_cast<LPARAM>(&message)) &
            (nCode | DLGC_WANTMESSAGE)) != 0;
}

bool Walk(CWizardFrame& frame, bool bBackward)
{
    frame.MoveFocus(bBackward);
    return true;
}

// The dialog manager has its own ways with other keys; of it, only the mnemonics are wanted.
bool IsMnemonicMessage(const MSG& message)
{
    return message.message == WM_CHAR || message.message == WM_SYSCHAR || message.message == WM_SYSKEYDOWN;
}

// Keys as they come without Alt.
bool TranslateKey(CWizardFrame& frame, const MSG& message, HWND hwndFocus)
{
    switch (message.wParam) {
    case VK_TAB:
        return !Wants(hwndFocus, DLGC_WANTTAB, message) && GetKeyState(VK_CONTROL) >= 0 &&
               Walk(frame, GetKeyState(VK_SHIFT) < 0);
    case VK_LEFT:
    case VK_UP:
        return !Wants(hwndFocus, DLGC_WANTARROWS, message) && Walk(frame, true);
    case VK_RIGHT:
    case VK_DOWN:
        return !Wants(hwndFocus, DLGC_WANTARROWS, message) && Walk(frame, false);
    case VK_RETURN:
        if (!Wants(hwndFocus, DLGC_WANTALLKEYS, message)) {
            frame.PressEnter(hwndFocus);
            return true;
        }
        return false;
    case VK_ESCAPE:
        frame.PressIfAvailable(PSWIZB_CANCEL);
        return true;
    default:
        return false;
    }
}

} // namespace

bool TranslateWizardMessage(CWizardFrame& frame, MSG& message)
{
    if (message.hwnd != frame.Window() && !IsChild(frame.Window(), message.hwnd)) {
        return false;
    }
    if (message.message == WM_KEYDOWN && TranslateKey(frame, message, message.hwnd)) {
        return true;
    }
    if (message.message == WM_SYSKEYDOWN && message.wParam == VK_LEFT) {
        frame.PressIfAvailable(PSWIZB_BACK);
        return true;
    }
    return IsMnemonicMessage(message) && IsDialogMessageW(frame.Window(), &message);
}
