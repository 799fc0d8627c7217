// Wide text as narrow text, for compilers whose platform comes without the template library. Found
// only by those: see the lists file. What is here keeps the template library's names and contract.
#pragma once

#include <atlstr.h>

// A narrow copy of a wide text, for as long as the object lives. Up to t_nBufferLength bytes are
// held in place, more on the heap. Without a code page the text is converted for the ANSI code page
// of the thread. m_psz is null for a null text. A text that cannot be converted, or memory that
// cannot be had, ends in AtlThrow.
template<int t_nBufferLength = 128>
class CW2AEX
{
public:
    explicit CW2AEX(PCWSTR psz, UINT nCodePage = CP_THREAD_ACP)
    {
        if (psz == nullptr) {
            return;
        }
        const int cch = lstrlenW(psz) + 1;
        // Four bytes a character are enough for every code page in use but a few.
        int cb = cch * 4;
        Reserve(cb);
        if (WideCharToMultiByte(nCodePage, 0, psz, cch, m_psz, cb, nullptr, nullptr) != 0) {
            return;
        }
        if (GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
            cb = WideCharToMultiByte(nCodePage, 0, psz, cch, nullptr, 0, nullptr, nullptr);
            Reserve(cb);
            if (WideCharToMultiByte(nCodePage, 0, psz, cch, m_psz, cb, nullptr, nullptr) != 0) {
                return;
            }
        }
        const HRESULT hr = HRESULT_FROM_WIN32(GetLastError());
        Free();
        AtlThrow(hr);
    }

    ~CW2AEX()
    {
        Free();
    }

    CW2AEX(const CW2AEX&) = delete;
    CW2AEX& operator=(const CW2AEX&) = delete;

    operator PSTR() const
    {
        return m_psz;
    }

    PSTR m_psz = nullptr;

private:
    void Reserve(int cb)
    {
        Free();
        m_psz = cb <= t_nBufferLength ? m_szBuffer : static_cast<PSTR>(malloc(static_cast<size_t>(cb)));
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

    char m_szBuffer[t_nBufferLength];
};

using CW2A = CW2AEX<>;
