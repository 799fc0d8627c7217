// The fixture of the probes: a status line of a page that is not there.
#pragma once

#include "wizard/WirelessDebuggingOnPage.h"

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"

const HWND kPage = reinterpret_cast<HWND>(0x9A6E);
const HWND kStatusLine = reinterpret_cast<HWND>(0x57A705);

// Each text that a probe writes into the status line leaves "status "text"" in the journal. A text for any other
// window fails the test.
class ProbeTest : public kit::Test
{
protected:
    ProbeTest()
        : m_setText(kit::Quietly([this](HWND hwnd, PCWSTR pszText) -> BOOL {
              EXPECT_EQ(hwnd, kStatusLine);
              m_texts.push_back(kit::Narrow(pszText));
              kit::Note("status \"" + m_texts.back() + '"');
              // Whoever asks for the reason of an earlier failure only now is too late.
              kit::unreplaced::SetLastError(ERROR_INVALID_WINDOW_HANDLE);
              return TRUE;
          }))
    {
    }

    kit::Lines m_texts;

private:
    Sockets m_sockets;
    REPLACED(SetWindowTextW) m_setText;
};

// The texts of so many attempts: "Pinging 192.168.1.100 (1 of 6)" …, and those behind them.
inline kit::Lines Attempts(const std::string& strDoing, int nAttempts, int nMost, const kit::Lines& behind)
{
    kit::Lines texts;
    for (int n = 1; n <= nAttempts; ++n) {
        texts.push_back(strDoing + " (" + std::to_string(n) + " of " + std::to_string(nMost) + ')');
    }
    texts.insert(texts.end(), behind.begin(), behind.end());
    return texts;
}
