// The fields of pages 5 and 6, as one types and pastes into them.
#pragma once

#include "check/Walk.h"

// Page 5, as it is shown first.
void LookAtAddress(const CWalk& walk);

// The limits and ways of the address field; leaves something in it.
void TypeIntoAddress(const CWalk& walk);

// The port of page 5, by keyboard and clipboard.
void LookAtPort(const CWalk& walk);

// The code of page 6.
void LookAtCode(const CWalk& walk);
