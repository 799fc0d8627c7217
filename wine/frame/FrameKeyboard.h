// The keys that mean something in the whole wizard: Tab and the arrows walk, Enter presses the
// default button or the push button that has the focus, Esc cancels, Alt+Left goes back. Mnemonics
// are the dialog manager's.
#pragma once

#include <windows.h>

class CWizardFrame;

// Acts on a message of the frame's loop, unless it is a key that the control with the focus wants for
// itself. True: the message is done with. False: it is to be translated and dispatched as usual.
bool TranslateWizardMessage(CWizardFrame& frame, MSG& message);
