#include "frame/AeroWizard.h"

#include "frame/FrameKeyboard.h"
#include "frame/WizardFrame.h"

namespace {

INT_PTR RunLoop(CWizardFrame& frame)
{
    MSG message;
    while (!frame.Result()) {
        const BOOL nGot = GetMessageW(&message, nullptr, 0, 0);
        if (nGot == 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return kWizardCancelled;
        }
        if (nGot < 0) {
            return kWizardFailed;
        }
        if (!TranslateWizardMessage(frame, message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        frame.FollowFocus();
    }
    return *frame.Result();
}

} // namespace

bool IsAeroWizard(const PROPSHEETHEADERW& header)
{
    return (header.dwFlags & PSH_AEROWIZARD) != 0;
}

INT_PTR RunAeroWizard(const PROPSHEETHEADERW& header)
{
    INT_PTR nResult = kWizardFailed;
    DWORD dwError = ERROR_SUCCESS;
    {
        CWizardFrame frame;
        if (frame.Create(header)) {
            nResult = RunLoop(frame);
        }
        dwError = GetLastError();
    }
    // Tidying up must not hide what went wrong.
    SetLastError(dwError);
    return nResult;
}
