// The keys that mean something in the whole wizard: Tab walks, Enter presses the default button or the push button that
// has the focus, Esc cancels, Alt+Left goes back.
#pragma once

#include <windows.h>

class CWizardFrame;

// Acts on a message of the frame's loop. True: it is done with. False: it is to be translated and dispatched as usual.
bool TranslateWizardMessage(CWizardFrame& frame, const MSG& message);
