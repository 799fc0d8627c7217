// The About box of the wizard's first page.
#pragma once

#include "app/ground/Platform.h"

// Handles a WM_COMMAND of the Welcome page: the About button clicked shows, modal to hwndPage, the
// application's title, what it does and the version of the running executable. Any other command
// does nothing. wParam is the message's own first parameter and is not used.
void ShowAboutBox(HWND hwndPage, UINT nControlId, WPARAM wParam, UINT nNotification);
