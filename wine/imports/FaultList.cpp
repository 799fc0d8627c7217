#include "imports/FaultList.h"

#include "imports/Journal.h"
#include "imports/Utf8.h"

#include <algorithm>
#include <atomic>
#include <regex>
#include <sstream>

namespace {

std::optional<FAULT> ParseFault(const std::wstring& szFault)
{
    static const std::wregex s_grammar(LR"((\w+)(?:@([1-9]\d{0,3}))?(?:#([^=]+))?=)"
                                       LR"((?:(fail|null|ret):(-?[1-9]\d{0,9}|0|0x[0-9a-fA-F]{1,8})|hang))");
    std::wsmatch parts;
    if (!std::regex_match(szFault, parts, s_grammar)) {
        return std::nullopt;
    }
    FAULT fault;
    fault.szFunction = ToUtf8(parts.str(1));
    fault.nCall = parts[2].matched ? static_cast<unsigned>(std::stoul(parts.str(2))) : 0;
    fault.szText = parts.str(3);
    fault.bHangs = !parts[4].matched;
    if (fault.bHangs) {
        return fault;
    }
    const long long nNumber = std::stoll(parts.str(5), nullptr, 0);
    if (parts.str(4) == L"ret") {
        fault.nResult = nNumber;
        return fault;
    }
    fault.dwError = static_cast<DWORD>(nNumber);
    if (parts.str(4) == L"null") {
        fault.nResult = 0;
    }
    return fault;
}

bool Concerns(const FAULT& fault, std::string_view szFunction, const std::vector<std::wstring>& texts)
{
    const auto holds = [&fault](const std::wstring& szText) { return szText.find(fault.szText) != std::wstring::npos; };
    return fault.szFunction == szFunction && (fault.szText.empty() || std::ranges::any_of(texts, holds));
}

} // namespace

std::optional<CFaults> ParseFaults(const std::wstring& szList, std::wstring& szWrong)
{
    CFaults faults;
    std::wistringstream list(szList);
    while (std::getline(list, szWrong, L';')) {
        const std::optional<FAULT> fault = ParseFault(szWrong);
        if (!fault) {
            return std::nullopt;
        }
        faults.push_back(*fault);
    }
    return faults;
}

const FAULT* FaultOfCall(CFaults& faults, std::string_view szFunction, const std::vector<std::wstring>& texts)
{
    const FAULT* pFails = nullptr;
    for (FAULT& fault : faults) {
        if (!Concerns(fault, szFunction, texts)) {
            continue;
        }
        const unsigned nCall = ++std::atomic_ref(fault.nCalls);
        if (pFails == nullptr && (fault.nCall == 0 || fault.nCall == nCall)) {
            pFails = &fault;
        }
    }
    return pFails;
}
