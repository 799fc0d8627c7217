// The stand-in for PropertySheet where it is asked for an Aero wizard.
#pragma once

#include "frame/PropertySheet.h"

// Shows the wizard and returns when it ends: 1 finished, 0 cancelled, -1 when it or one of its pages cannot be made.
// Of the header: the pages as records with PSH_PROPSHEETPAGE, caption, icon. Of a page: the template (DIALOGEX) from
// the resources, the procedure, lParam, the header title.
INT_PTR RunAeroWizard(const PROPSHEETHEADERW& header);
