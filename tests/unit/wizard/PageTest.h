// The fixture of a page: the data that it shares with the others, a watch that answers its probes and an adb that the
// test scripts.
#pragma once

#include "tests/kit/AnsweringAdb.h"
#include "tests/unit/wizard/AnsweringWatch.h"
#include "tests/unit/wizard/PageWindow.h"

#include <optional>

// What a run of adb prints, and whether its exit code can be had.
struct AdbRun
{
    AdbRun(PCSTR pszOutput, bool bHasExitCode = true) : strOutput(pszOutput), bExitCode(bHasExitCode) {}

    std::string strOutput;
    bool bExitCode;
};

// What it prints when it stops its server, or finds none to stop.
constexpr PCSTR kStopped = "";
constexpr PCSTR kNoServer =
    "cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. (10061)\r\n";

// The journal's lines of a status text, and of a box of the page or of nobody.
kit::Lines Status(const std::string& strText);
kit::Lines Told(const std::string& strCaption, const std::string& strText);
kit::Lines ToldByNobody(const std::string& strCaption, const std::string& strText);

// Those of a ping of 192.168.1.100 that is answered at once, and of all that comes when none is.
kit::Lines Ping();
kit::Lines NoAnswer();

// The texts of boxes that several pages show.
constexpr PCSTR kPortRange = "Please enter a port value in the range of 1024 through 65535.";
constexpr PCSTR kNotStopped = "Unable to stop the adb service. Please report this error to KALVO\n";

// The text "attempt 2 of 3".
std::string Attempt(int nAttempt);

class PageTest : public kit::Test
{
protected:
    // The address in the data is 192.168.1.100:43210, with something behind it.
    explicit PageTest(const Page& page);

    // Creates the page, without the controls with these ids.
    PageWindow& Open(std::vector<int> missing = {})
    {
        return m_page.emplace(m_row, m_data, std::move(missing));
    }

    // Presses Next while adb does this in its runs, and compares the answer and the journal: the status texts, pings
    // and connections, runs of adb and sleeps, and boxes.
    void ExpectNext(LRESULT nAnswer, const std::vector<AdbRun>& runs, const std::vector<kit::Lines>& course,
                    std::source_location where = std::source_location::current());

    // This edit was made one for digits and emptied, in this call, and takes as many digits as this text has.
    void ExpectDigitsField(int nEditId, const std::wstring& strFilled, const REPLACED(SetWindowSubclass) & subclass,
                           size_t nCall);

    // Whether the data's address is as it was at first.
    bool IsAddressUntouched() const;

    const Page& m_row;
    AnsweringWatch m_watch;
    kit::AnsweringAdb m_adb;
    CWizardData m_data;
    std::optional<PageWindow> m_page;

private:
    SOCKADDR_STORAGE m_saFirst;
    int m_nBoxes = 0;
};
