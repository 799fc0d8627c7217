// The wizard while it works and takes no input: what it says meanwhile.
#pragma once

#include "check/StatusWatch.h"
#include "check/Walk.h"

#include <string>
#include <vector>

struct WORK
{
    SAID said;
    std::vector<std::wstring> boxes; // "caption: text", as they came; all were dismissed
    int nPage;                       // when it was over
    bool bGhost;                     // the system put a window of its own in the wizard's place
    ULONGLONG nMilliseconds;
};

enum class PATIENCE
{
    kPatient,
    kImpatient // clicks on the working page once: what is not taken may make the system look whether anybody listens
};

// Presses Next and watches until the next page comes or the last box was dismissed and the wizard listens again.
WORK PressNextAndWatch(const CWalk& walk, PATIENCE nPatience = PATIENCE::kPatient);
