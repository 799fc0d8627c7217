// Waiting, and being told to stop: whoever waits here stops at once when the user presses Cancel.
#pragma once

#include <windows.h>

#include <string>

// Thrown by every wait once the user has cancelled; the scopes that it leaves tidy up.
struct CStopped
{
};

// Thrown by a step that cannot go on, with the reason.
struct CLost
{
    std::wstring szWhy;
};

// From any thread: lets every wait end.
void Stop();

// In the scope of one, waits go on although the user has cancelled: for what tidies up.
class CUnstoppable
{
public:
    CUnstoppable();
    ~CUnstoppable();
    CUnstoppable(const CUnstoppable&) = delete;
    CUnstoppable& operator=(const CUnstoppable&) = delete;
};

void Pause(DWORD dwMilliseconds);

// Looks until what is seen pleases. False when it did not in that time.
template<typename SEEN>
bool WaitFor(DWORD dwMilliseconds, SEEN seen)
{
    constexpr DWORD kBetweenLooks = 15;
    const ULONGLONG nEnd = GetTickCount64() + dwMilliseconds;
    for (;;) {
        if (seen()) {
            return true;
        }
        if (GetTickCount64() >= nEnd) {
            return false;
        }
        Pause(kBetweenLooks);
    }
}
