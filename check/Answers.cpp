#include "check/Answers.h"

#include "check/Picture.h"

#include <algorithm>
#include <cstdlib>

namespace {

bool IsClaim(const std::wstring& szId)
{
    return std::ranges::find(AllClaims(), szId, &CLAIM::szId) != AllClaims().end();
}

} // namespace

RESULT& CAnswers::Row(const std::wstring& szId)
{
    if (!IsClaim(szId)) {
        MessageBoxW(nullptr, szId.c_str(), L"There is no such claim", MB_OK);
        std::abort();
    }
    return m_results[szId];
}

void CAnswers::Tell(const std::wstring& szId, bool bHolds, const std::wstring& szExpected, const std::wstring& szSeen,
                    HWND hwndPictured)
{
    RESULT& row = Row(szId);
    if (m_excluded.contains(szId) || row.nAnswer == ANSWER::kDoesNotHold) {
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

void CAnswers::GroupNotTried(const std::wstring& szGroup, const std::wstring& szWhy)
{
    for (const CLAIM& claim : AllClaims()) {
        if (GroupOf(claim.szId) == szGroup) {
            NotTried(claim.szId, szWhy);
        }
    }
}

bool CAnswers::Exclude(const std::wstring& szId, const std::wstring& szWhy)
{
    if (!IsClaim(szId)) {
        return false;
    }
    m_excluded[szId] = szWhy;
    NotTried(szId, szWhy);
    return true;
}

void CAnswers::AddPicture(const std::wstring& szName, HWND hwnd)
{
    if (std::string png = TakePicture(hwnd); !png.empty()) {
        m_pictures.push_back({szName, std::move(png)});
    }
}

const RESULT& CAnswers::Of(const std::wstring& szId) const
{
    static const RESULT s_none;
    const auto found = m_results.find(szId);
    return found == m_results.end() ? s_none : found->second;
}

size_t CAnswers::Count(ANSWER nAnswer) const
{
    return static_cast<size_t>(
        std::ranges::count_if(AllClaims(), [&](const CLAIM& claim) { return Of(claim.szId).nAnswer == nAnswer; }));
}
