#include "check/Answers.h"

#include "check/Picture.h"
#include "check/Stopping.h"
#include "check/Text.h"

#include <algorithm>

CAnswers::CAnswers()
{
    for (const CLAIM& claim : AllClaims()) {
        m_results[claim.szId] = {};
    }
}

RESULT& CAnswers::Row(const std::wstring& szId)
{
    const auto found = m_results.find(szId);
    if (found == m_results.end()) {
        throw CLost{L"There is no claim " + szId + L"."};
    }
    return found->second;
}

void CAnswers::Tell(const std::wstring& szId, bool bHolds, const std::wstring& szExpected, const std::wstring& szSeen,
                    HWND hwndPictured)
{
    RESULT& row = Row(szId);
    if (row.bExcluded || row.nAnswer == ANSWER::kDoesNotHold) {
        return;
    }
    row = {bHolds ? ANSWER::kHolds : ANSWER::kDoesNotHold, szExpected, szSeen, {}, {}};
    if (!bHolds && hwndPictured != nullptr) {
        row.szPicture = szId;
        AddPicture(szId, hwndPictured);
    }
}

void CAnswers::Expect(const std::wstring& szId, const std::wstring& szExpected, const std::wstring& szSeen,
                      HWND hwndPictured)
{
    Tell(szId, szExpected == szSeen, szExpected, szSeen, hwndPictured);
}

void CAnswers::Either(const std::wstring& szId, bool bExpected, const std::wstring& szExpected,
                      const std::wstring& szElse, HWND hwndPictured)
{
    Tell(szId, bExpected, szExpected, bExpected ? szExpected : szElse, hwndPictured);
}

void CAnswers::NotTried(const std::wstring& szId, const std::wstring& szWhy)
{
    RESULT& row = Row(szId);
    if (row.nAnswer == ANSWER::kNotTried && row.szWhy.empty()) {
        row.szWhy = szWhy;
    }
}

void CAnswers::GroupsNotTried(PCWSTR pszGroups, const std::wstring& szWhy)
{
    const std::vector<std::wstring> groups = WordsIn(pszGroups);
    for (const CLAIM& claim : AllClaims()) {
        if (std::ranges::find(groups, claim.szId.substr(0, claim.szId.find(L'.'))) != groups.end()) {
            NotTried(claim.szId, szWhy);
        }
    }
}

void CAnswers::Exclude(const std::wstring& szId, const std::wstring& szWhy)
{
    RESULT& row = Row(szId);
    row.bExcluded = true;
    row.szWhy = szWhy;
}

void CAnswers::AddPicture(const std::wstring& szName, HWND hwnd)
{
    if (std::string png = TakePicture(hwnd); !png.empty()) {
        m_pictures.push_back({szName, std::move(png)});
    }
}

size_t CAnswers::Count(ANSWER nAnswer) const
{
    const auto IsSo = [nAnswer](const auto& item) { return item.second.nAnswer == nAnswer; };
    return static_cast<size_t>(std::ranges::count_if(m_results, IsSo));
}
