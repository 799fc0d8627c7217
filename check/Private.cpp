#include "check/Private.h"

#include "check/Text.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <regex>
#include <utility>
#include <vector>

namespace {

using REPLACEMENT = std::pair<std::wstring, std::wstring>;

// The longest first, for the profile's folder is the beginning of others.
std::vector<REPLACEMENT> Replacements()
{
    std::vector<REPLACEMENT> all;
    for (const PCWSTR pszName : {L"LOCALAPPDATA", L"APPDATA", L"USERPROFILE", L"PUBLIC", L"ProgramData", L"USERNAME",
                                 L"COMPUTERNAME", L"USERDOMAIN", L"LOGONSERVER"}) {
        const wchar_t* const pszValue = _wgetenv(pszName);
        if (pszValue != nullptr && std::wcslen(pszValue) > 1) {
            all.emplace_back(pszValue, L"%" + std::wstring(pszName) + L"%");
        }
    }
    std::ranges::stable_sort(all, std::ranges::greater(), [](const REPLACEMENT& item) { return item.first.size(); });
    return all;
}

bool IsPartOfWord(wchar_t c)
{
    return std::iswalnum(static_cast<wint_t>(c)) != 0 || c == L'_' || c == L'%';
}

void ReplaceWords(std::wstring& szText, const REPLACEMENT& replacement)
{
    const auto& [szOld, szNew] = replacement;
    for (size_t n = 0; n + szOld.size() <= szText.size(); ++n) {
        const size_t nEnd = n + szOld.size();
        if (IsSame(std::wstring_view(szText).substr(n, szOld.size()), szOld) &&
            (n == 0 || !IsPartOfWord(szText[n - 1])) && (nEnd == szText.size() || !IsPartOfWord(szText[nEnd]))) {
            szText.replace(n, szOld.size(), szNew);
            n += szNew.size() - 1;
        }
    }
}

} // namespace

std::wstring WithoutNames(std::wstring_view szText)
{
    static const std::vector<REPLACEMENT> s_replacements = Replacements();
    // Of an address, also its beginning alone, as the wizard proposes it.
    static const std::wregex s_address(LR"((^|[^\d.])(?!127\.0\.0\.)\d{1,3}\.\d{1,3}\.\d{1,3}\.\d{0,3})");
    static const std::wregex s_address6(LR"(\b[0-9a-fA-F]{1,4}(?::[0-9a-fA-F]{0,4}){4,7}\b)");
    std::wstring szClean(szText);
    for (const REPLACEMENT& replacement : s_replacements) {
        ReplaceWords(szClean, replacement);
    }
    szClean = std::regex_replace(szClean, s_address, L"$1(an address)");
    return std::regex_replace(szClean, s_address6, L"(an address)");
}
