// The status line of a page that is not there: keeps the texts that a probe writes into it.
#pragma once

#include "tests/kit/Test.h"

#include <string>
#include <vector>

// Each text leaves "status "text"" in the journal. A text for any other window fails the test.
class StatusLine
{
public:
    StatusLine()
        : m_setText([this](HWND hwnd, PCWSTR pszText) -> BOOL {
              EXPECT_EQ(hwnd, Window());
              m_texts.emplace_back(pszText);
              kit::Note("status \"" + kit::Narrow(pszText) + '"');
              // Whoever asks for the reason of an earlier failure only now is too late.
              kit::unreplaced::SetLastError(ERROR_INVALID_WINDOW_HANDLE);
              return TRUE;
          })
    {
        m_setText.Optional().Unnoted();
    }

    static HWND Window()
    {
        return reinterpret_cast<HWND>(0x57A705);
    }

    const std::vector<std::wstring>& Texts() const
    {
        return m_texts;
    }

private:
    std::vector<std::wstring> m_texts;
    REPLACED(SetWindowTextW) m_setText;
};
