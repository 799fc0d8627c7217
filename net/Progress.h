// How a probe tells its caller of its attempts.
#pragma once

class CProgress
{
public:
    // An attempt begins: its number, from 1, and how many there are at most.
    virtual void OnAttempt(int nAttempt, int nAttempts) = 0;

protected:
    ~CProgress() = default;
};
