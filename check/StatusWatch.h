// The status line of a page that works, looked at by a thread that does nothing else: some lines stand for no longer
// than 200 ms, and a look at the whole wizard takes longer than that on a busy machine.
#pragma once

#include "check/Sight.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

struct STATUS_LINE
{
    std::wstring szText;
    ULONGLONG nMilliseconds;      // since the watch began
    std::vector<COLORREF> pixels; // of the screen, the last ones; empty when it did not stand long enough
    bool bAsWide;                 // as its letters are
};

// What the status line said.
struct SAID
{
    std::vector<STATUS_LINE> lines; // in their order; the first is what stood there when the watch began
    ULONGLONG nShortest;            // that a line stands which the claims ask for, in milliseconds
    ULONGLONG nLongestGap;          // between two looks, in milliseconds

    // "1 of 3" from each line that has such a thing.
    std::wstring Counts() const;
    std::wstring Texts() const;
    bool SaysSomewhere(const std::wstring& szText) const;
    // Those behind the first that stood long enough to be looked at, and of these those that showed another's letters.
    std::vector<std::wstring> LookedAt() const;
    std::vector<std::wstring> Unpainted() const;
    // Whether no such line can have been missed.
    bool IsGapless() const;
};

class CStatusWatch
{
public:
    // Looks at the page of that sight from now on.
    explicit CStatusWatch(const SIGHT& sight);
    ~CStatusWatch();
    CStatusWatch(const CStatusWatch&) = delete;
    CStatusWatch& operator=(const CStatusWatch&) = delete;

    // Looks once more, for the last time.
    const SAID& End();

private:
    void Stop();
    void Watch();
    std::wstring Shown() const;
    void Look();
    void LookAtPixels(STATUS_LINE& line) const;

    HWND m_hwndFrame;
    HWND m_hwnd;
    RECT m_rect;
    ULONGLONG m_nStart;
    ULONGLONG m_nLastLook;
    SAID m_said = {};
    std::atomic<bool> m_bStopped = false;
    std::thread m_thread;
};
