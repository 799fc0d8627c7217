#include "check/Stopping.h"

namespace {

thread_local int t_nUnstoppable = 0;

HANDLE StopEvent()
{
    // For as long as the process lives.
    static const HANDLE s_hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return s_hEvent;
}

} // namespace

void Stop()
{
    SetEvent(StopEvent());
}

CUnstoppable::CUnstoppable()
{
    ++t_nUnstoppable;
}

CUnstoppable::~CUnstoppable()
{
    --t_nUnstoppable;
}

void Pause(DWORD dwMilliseconds)
{
    if (t_nUnstoppable != 0) {
        Sleep(dwMilliseconds);
    } else if (WaitForSingleObject(StopEvent(), dwMilliseconds) == WAIT_OBJECT_0) {
        throw CStopped();
    }
}
