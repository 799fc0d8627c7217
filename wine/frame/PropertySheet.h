// The platform's property sheets, with what its Aero wizards added and not every SDK declares.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#ifndef PSH_AEROWIZARD
#define PSH_AEROWIZARD 0x00004000
#endif
#ifndef PSWIZB_CANCEL
#define PSWIZB_CANCEL 0x00000010
#endif
#ifndef PSM_SHOWWIZBUTTONS
#define PSM_SHOWWIZBUTTONS (WM_USER + 138)
#endif

// The ids that the frame's buttons have on Windows; Cancel is IDCANCEL.
constexpr int kBackButtonId = 0x3023;
constexpr int kNextButtonId = 0x3024;
constexpr int kFinishButtonId = 0x3025;
