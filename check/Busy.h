// The wizard while it works and takes no input: what it says meanwhile.
#pragma once

#include "check/Walk.h"

#include <string>
#include <vector>

struct STATUS_LINE
{
    std::wstring szText;
    ULONGLONG nMilliseconds;      // since Next was pressed
    std::vector<COLORREF> pixels; // of the status line on the screen, a moment after it was said
};

struct WORK
{
    STATUS_LINE before;              // what stood there when Next was pressed
    std::vector<STATUS_LINE> lines;  // each once, in their order
    std::vector<std::wstring> boxes; // "caption: text", as they came; all were dismissed
    int nPage;                       // when it was over
    bool bGhost;                     // the system put a window of its own in the wizard's place
    ULONGLONG nMilliseconds;

    // "1 of 3" from each line that has such a thing.
    std::wstring Counts() const;
    std::wstring Texts() const;
    // Whether each line was on the screen, and not another's letters.
    bool WerePainted() const;
    bool SaysSomewhere(const std::wstring& szText) const;
};

enum class PATIENCE
{
    kPatient,
    kImpatient // clicks on the working page once: what is not taken may make the system look whether anybody listens
};

// Presses Next and watches until the next page comes or the last box was dismissed and the wizard listens again.
WORK PressNextAndWatch(const CWalk& walk, PATIENCE nPatience = PATIENCE::kPatient);
