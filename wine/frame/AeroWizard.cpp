#include "frame/AeroWizard.h"

#include "frame/FrameKeyboard.h"
#include "frame/WizardFrame.h"

INT_PTR RunAeroWizard(const PROPSHEETHEADERW& header)
{
    CWizardFrame frame;
    if (!frame.Create(header)) {
        return kWizardFailed;
    }
    MSG message;
    while (!frame.Result() && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (!TranslateWizardMessage(frame, message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        frame.FollowFocus();
    }
    return frame.Result().value_or(kWizardFailed);
}
