// Wide text as narrow text, for compilers whose platform comes without the template library. Found
// only by those: see the lists file. What is here keeps the template library's names and contract.
#pragma once

#include <atlstr.h>

// A copy of a wide text in the ANSI code page of the thread, for as long as the object lives. Up to 128
// bytes are held in place, more on the heap. m_psz is null for a null text. A text that cannot be
// converted, or memory that cannot be had, ends in AtlThrow.
class CW2A
{
public:
    explicit CW2A(PCWSTR psz)
    {
        if (psz == nullptr) {
            return;
        }
        const int cch = lstrlenW(psz) + 1;
        // Four bytes a character are enough for every code page in use but a few.
        int cb = cch * 4;
        Reserve(cb);
        if (WideCharToMultiByte(CP_THREAD_ACP, 0, psz, cch, m_psz, cb, nullptr, nullptr) != 0) {
            return;
        }
        if (GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
            cb = WideCharToMultiByte(CP_THREAD_ACP, 0, psz, cch, nullptr, 0, nullptr, nullptr);
            Reserve(cb);
            if (WideCharToMultiByte(CP_THREAD_ACP, 0, psz, cch, m_psz, cb, nullptr, nullptr) != 0) {
                return;
            }
        }
        const HRESULT hr = HRESULT_FROM_WIN32(GetLastError());
        Free();
        AtlThrow(hr);
    }

    ~CW2A()
    {
        Free();
    }

    CW2A(const CW2A&) = delete;
    CW2A& operator=(const CW2A&) = delete;

    operator PSTR() const
    {
        return m_psz;
    }

    PSTR m_psz = nullptr;

private:
    void Reserve(int cb)
    {
        Free();
        const auto cbNeeded = static_cast<size_t>(cb);
        m_psz = cbNeeded <= sizeof(m_szBuffer) ? m_szBuffer : static_cast<PSTR>(malloc(cbNeeded));
        if (m_psz == nullptr) {
            AtlThrow(E_OUTOFMEMORY);
        }
    }

    void Free()
    {
        if (m_psz != m_szBuffer) {
            free(m_psz);
        }
        m_psz = nullptr;
    }

    char m_szBuffer[128];
};
