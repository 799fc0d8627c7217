// The wizard: the frame's settings and its pages in order.
#pragma once

#include "wizard/WizardData.h"

// Runs the wizard modally with the resources of hInstance. Every page gets the address of
// wizardData, which must be as new. Returns what the frame returns: -1 for a failure, anything else
// when the user finished or cancelled.
INT_PTR RunWizard(HINSTANCE hInstance, CWizardData& wizardData);
