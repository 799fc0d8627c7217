#include "check/Surroundings.h"

#include "check/Command.h"
#include "check/Stopping.h"
#include "kit/Request.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

// The first word, and what follows it.
std::pair<std::wstring, std::wstring> Split(const std::wstring& szLine)
{
    const size_t nEnd = szLine.find(L' ');
    return nEnd == std::wstring::npos ? std::pair(szLine, std::wstring())
                                      : std::pair(szLine.substr(0, nEnd), szLine.substr(nEnd + 1));
}

void Take(SURROUNDINGS& surroundings, const std::wstring& szLine)
{
    const auto [szWord, szRest] = Split(szLine);
    if (szWord == L"through" && !szRest.empty()) {
        surroundings.szThrough = szRest;
    } else if (szWord == L"not-tried" && szRest.find(L' ') != std::wstring::npos) {
        surroundings.notTried.push_back(Split(szRest));
    } else if (szWord == L"told" && !szRest.empty()) {
        surroundings.told.push_back(szRest);
    } else if (!szLine.empty() && !szLine.starts_with(L'#')) {
        throw CLost{L"the file of the surroundings makes no sense at \"" + szLine + L"\""};
    }
}

} // namespace

SURROUNDINGS ReadSurroundings(const std::wstring& szFile)
{
    std::ifstream stream(std::filesystem::path(szFile), std::ios::binary);
    if (!stream) {
        throw CLost{L"cannot read " + szFile};
    }
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    SURROUNDINGS surroundings;
    for (const std::string& line : LinesOf(text)) {
        Take(surroundings, FromUtf8(line));
    }
    return surroundings;
}
