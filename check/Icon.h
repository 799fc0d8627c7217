// The wizard's icon.
#pragma once

#include "check/Walk.h"

// Compares what page 1 is shown with and the icon in the program's resources.
void LookAtIcons(const CWalk& walk);
