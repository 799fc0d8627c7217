#include "frame/FrameKeyboard.h"

#include "frame/WizardFrame.h"

namespace {

// Keys as they come without Alt.
bool TranslateKey(CWizardFrame& frame, const MSG& message)
{
    switch (message.wParam) {
    case VK_TAB:
        frame.MoveFocus(GetKeyState(VK_SHIFT) < 0);
        return true;
    case VK_RETURN:
        frame.PressEnter(message.hwnd);
        return true;
    case VK_ESCAPE:
        frame.PressIfShown(IDCANCEL);
        return true;
    default:
        return false;
    }
}

} // namespace

bool TranslateWizardMessage(CWizardFrame& frame, const MSG& message)
{
    if (message.hwnd != frame.Window() && !IsChild(frame.Window(), message.hwnd)) {
        return false;
    }
    if (message.message == WM_SYSKEYDOWN && message.wParam == VK_LEFT) {
        frame.PressIfShown(kBackButtonId);
        return true;
    }
    return message.message == WM_KEYDOWN && TranslateKey(frame, message);
}
