// What came of each claim.
#pragma once

#include "check/Claims.h"

#include <windows.h>

#include <map>
#include <string>
#include <vector>

enum class ANSWER
{
    kHolds,
    kDoesNotHold,
    kNotTried
};

struct RESULT
{
    ANSWER nAnswer = ANSWER::kNotTried;
    std::wstring szExpected;
    std::wstring szSeen;
    std::wstring szWhy;     // not tried: the reason; empty as long as nothing was said
    std::wstring szPicture; // the name of one, empty for none
    bool bExcluded = false;
};

// A case of a program of unit tests.
struct UNIT_CASE
{
    std::wstring szProgram;
    std::wstring szName;
    bool bPassed;
};

struct PICTURE
{
    std::wstring szName;
    std::string png; // base 64
};

// An id that is not in the table is a slip, of this program or on its command line: CLost.
class CAnswers
{
public:
    CAnswers();

    // A claim may be looked at several times: it holds when it holds each time, and the first time that it does not is
    // told.
    void Tell(const std::wstring& szId, bool bHolds, const std::wstring& szExpected, const std::wstring& szSeen,
              HWND hwndPictured = nullptr);

    // Holds when both are the same.
    void Expect(const std::wstring& szId, const std::wstring& szExpected, const std::wstring& szSeen,
                HWND hwndPictured = nullptr);

    // There is what is expected, or else the other.
    void Either(const std::wstring& szId, bool bExpected, const std::wstring& szExpected, const std::wstring& szElse,
                HWND hwndPictured = nullptr);

    // Keeps an answer that is there already.
    void NotTried(const std::wstring& szId, const std::wstring& szWhy);

    // The same for all claims of some groups, which stand between blanks.
    void GroupsNotTried(PCWSTR pszGroups, const std::wstring& szWhy);

    // Whatever is seen: the claim stays not tried, for that reason.
    void Exclude(const std::wstring& szId, const std::wstring& szWhy);

    void AddPicture(const std::wstring& szName, HWND hwnd);

    const RESULT& Of(const std::wstring& szId) const
    {
        return m_results.at(szId);
    }
    size_t Count(ANSWER nAnswer) const;

    std::vector<PICTURE> m_pictures;
    std::vector<UNIT_CASE> m_cases;
    std::vector<std::wstring> m_notes; // what else may help to understand the report, a paragraph each

private:
    RESULT& Row(const std::wstring& szId);

    std::map<std::wstring, RESULT> m_results;
};
