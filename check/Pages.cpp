#include "check/Pages.h"

#include <format>
#include <utility>

std::wstring PageClaim(int nPage, PCWSTR pszWhat)
{
    return std::format(L"page-{:02}.{}", nPage, pszWhat);
}

std::wstring ButtonNames(UINT nButtons)
{
    constexpr std::pair<UINT, PCWSTR> kNames[] = {
        {kBack, L"Back"}, {kNext, L"Next"}, {kFinish, L"Finish"}, {kCancel, L"Cancel"}};
    std::wstring szNames;
    for (const auto& [nButton, pszName] : kNames) {
        if (nButtons & nButton) {
            szNames += (szNames.empty() ? L"" : L", ") + std::wstring(pszName);
        }
    }
    return szNames.empty() ? L"none" : szNames;
}
