// The fixture of every unit test. While a test runs, no box waits for anybody, no sleep takes time
// and nothing can end the test program. It fails over a box that it did not expect, and over an end
// of the process outside ExitCodeOf. The journal begins empty. See README.md.
#pragma once

#include "tests/kit/Journal.h"
#include "tests/kit/Replaced.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <optional>
#include <source_location>
#include <string>
#include <vector>

namespace kit {

// A message box that was shown.
struct Box
{
    HWND hwndOwner;
    std::wstring strText;
    std::wstring strCaption;
    UINT nFlags;
};

class Test : public testing::Test
{
protected:
    Test();
    ~Test() override;

    // The oldest box not yet asked for has this text and caption, this owner or none, and nothing
    // but an OK button.
    void ExpectBox(const std::wstring& strText, const std::wstring& strCaption,
                   std::source_location where = std::source_location::current());
    void ExpectBox(HWND hwndOwner, const std::wstring& strText, const std::wstring& strCaption,
                   std::source_location where = std::source_location::current());

    // The oldest box not yet asked for. Fails the test when there is none.
    Box TakeBox(std::source_location where = std::source_location::current());

    // Is called while a box is up, before it is answered with OK.
    void WhenBoxShows(std::function<void(const Box&)> action);

    // Runs the body and gives the exit code with which it ended the process; nothing when it
    // returned. As when a process ends, nothing of the body is destroyed: what the test needs
    // afterwards, replacements above all, must stand outside. The body has a thread of its own, so
    // windows that it uses must be made inside.
    std::optional<UINT> ExitCodeOf(std::function<void()> body);

    // The milliseconds of every sleep.
    const std::vector<DWORD>& Sleeps() const
    {
        return m_sleeps;
    }

private:
    int OnMessageBox(HWND hwndOwner, PCWSTR pszText, PCWSTR pszCaption, UINT nFlags);
    void OnExitProcess(UINT nExitCode);
    void OnSleep(DWORD dwMilliseconds);

    std::deque<Box> m_boxes;
    std::function<void(const Box&)> m_onBox;
    std::vector<DWORD> m_sleeps;
    std::optional<UINT> m_exitCode;

    REPLACED(MessageBoxW) m_messageBox;
    REPLACED(ExitProcess) m_exitProcess;
    REPLACED(Sleep) m_sleep;
};

// UTF-8 of a wide text, for journals and messages.
std::string Narrow(const std::wstring& str);

// What the system says of an error code, with the line break at its end.
std::wstring SystemDescription(DWORD dwCode);

// Names the instances of a parameterised test after the rows' own names (letters and digits).
inline constexpr auto kByName = [](const auto& info) { return std::string(info.param.pszName); };

} // namespace kit
