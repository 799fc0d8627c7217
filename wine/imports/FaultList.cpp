#include "imports/FaultList.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace {

// Splits a text at the first separator. Without one, all of it comes before, and there is nothing after.
std::pair<std::wstring_view, std::optional<std::wstring_view>> SplitAt(std::wstring_view szText, wchar_t chSeparator)
{
    const size_t nAt = szText.find(chSeparator);
    if (nAt == std::wstring_view::npos) {
        return {szText, std::nullopt};
    }
    return {szText.substr(0, nAt), szText.substr(nAt + 1)};
}

std::optional<long long> ParseNumber(std::wstring_view szNumber)
{
    const std::wstring szCopy(szNumber);
    wchar_t* pchEnd = nullptr;
    const long long n = wcstoll(szCopy.c_str(), &pchEnd, 0);
    return szCopy.empty() || *pchEnd != L'\0' ? std::nullopt : std::optional(n);
}

// "2" or "2+"
bool ParseCallNumber(std::wstring_view szNumber, FAULT& fault)
{
    fault.bOnlyThat = !szNumber.ends_with(L'+');
    if (!fault.bOnlyThat) {
        szNumber.remove_suffix(1);
    }
    const auto n = ParseNumber(szNumber);
    fault.nFirstCall = static_cast<unsigned>(n.value_or(0));
    return n && *n > 0;
}

// "function@2#text"
bool ParseCall(std::wstring_view szCall, FAULT& fault)
{
    const auto [szFunctionAndNumber, szText] = SplitAt(szCall, L'#');
    const auto [szFunction, szNumber] = SplitAt(szFunctionAndNumber, L'@');
    for (const wchar_t ch : szFunction) {
        fault.szFunction += static_cast<char>(ch);
    }
    fault.szText = LowerCase(std::wstring(szText.value_or(L"")));
    return !szFunction.empty() && (!szNumber || ParseCallNumber(*szNumber, fault)) && (!szText || !szText->empty());
}

// "kind:number", "ret:number:number" or "hang"
bool ParseFailure(std::wstring_view szFailure, FAULT& fault)
{
    if (szFailure == L"hang") {
        fault.kind = FAULT_KIND::Hang;
        return true;
    }
    const auto [szKind, szNumbers] = SplitAt(szFailure, L':');
    const auto [szFirst, szSecond] = SplitAt(szNumbers.value_or(L""), L':');
    const auto nFirst = ParseNumber(szFirst);
    const auto nSecond = ParseNumber(szSecond.value_or(L""));
    if (!nFirst || (szSecond && !nSecond)) {
        return false;
    }
    if (szKind == L"ret") {
        fault.kind = FAULT_KIND::Return;
        fault.nResult = *nFirst;
        fault.dwError = szSecond ? std::optional(static_cast<DWORD>(*nSecond)) : std::nullopt;
        return true;
    }
    fault.kind = szKind == L"null" ? FAULT_KIND::Null : FAULT_KIND::Fail;
    fault.dwError = static_cast<DWORD>(*nFirst);
    return !szSecond && (szKind == L"null" || szKind == L"fail");
}

bool Concerns(const FAULT& fault, std::string_view szFunction, const std::vector<std::wstring>& texts)
{
    const auto matches = [&fault](const std::wstring& szText) {
        return LowerCase(szText).find(fault.szText) != std::wstring::npos;
    };
    return fault.szFunction == szFunction && (fault.szText.empty() || std::any_of(texts.begin(), texts.end(), matches));
}

} // namespace

std::wstring LowerCase(std::wstring szText)
{
    CharLowerBuffW(szText.data(), static_cast<DWORD>(szText.size()));
    return szText;
}

std::optional<CFaultList> CFaultList::Parse(std::wstring_view szList, std::wstring& szWrong)
{
    CFaultList list;
    for (std::optional<std::wstring_view> szRest = szList; szRest && !szRest->empty();) {
        const auto [szFault, szNext] = SplitAt(*szRest, L';');
        const auto [szCall, szFailure] = SplitAt(szFault, L'=');
        FAULT fault;
        if (!ParseCall(szCall, fault) || !szFailure || !ParseFailure(*szFailure, fault)) {
            szWrong = szFault;
            return std::nullopt;
        }
        list.m_faults.push_back(std::move(fault));
        szRest = szNext;
    }
    list.m_calls.resize(list.m_faults.size());
    return list;
}

const FAULT* CFaultList::OnCall(std::string_view szFunction, const std::vector<std::wstring>& texts)
{
    const FAULT* pFails = nullptr;
    for (size_t n = 0; n < m_faults.size(); ++n) {
        const FAULT& fault = m_faults[n];
        if (!Concerns(fault, szFunction, texts)) {
            continue;
        }
        const auto nCall = static_cast<unsigned>(InterlockedIncrement(&m_calls[n]));
        if (pFails == nullptr && (fault.bOnlyThat ? nCall == fault.nFirstCall : nCall >= fault.nFirstCall)) {
            pFails = &fault;
        }
    }
    return pFails;
}
