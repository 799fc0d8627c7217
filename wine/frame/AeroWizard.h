// The stand-in for PropertySheet where it is asked for an Aero wizard.
#pragma once

#include "frame/PropertySheet.h"

// Whether the header asks for a wizard that RunAeroWizard can show.
bool IsAeroWizard(const PROPSHEETHEADERW& header);

// Shows the wizard and returns when it ends: 1 finished, 0 cancelled, -1 failed with the last error
// saying why. As modal as PropertySheet: the parent of the header is disabled meanwhile, unless it is
// the desktop. A WM_QUIT ends the wizard and is left for the loops around it.
//
// Of the header: the pages as records with PSH_PROPSHEETPAGE, caption, icon, parent, start page. Of
// a page: the template from the resources, the procedure, lParam, the header title.
INT_PTR RunAeroWizard(const PROPSHEETHEADERW& header);
