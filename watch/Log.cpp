#include "Log.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace {
constexpr std::size_t LONGEST_LINE = 2000;
}

CLog::CLog(Sink sink) : m_sink(std::move(sink)) {}

void CLog::Write(std::string szLine)
{
    if (szLine.size() > LONGEST_LINE) {
        szLine.resize(LONGEST_LINE);
    }
    szLine = Printable(szLine);
    const std::lock_guard lock(m_mutex);
    m_sink(szLine);
}

void PrintLine(const std::string& szLine)
{
    const std::string szWhole = szLine + '\n';
    std::fwrite(szWhole.data(), 1, szWhole.size(), stdout);
    std::fflush(stdout);
}

std::string Printable(std::string_view text)
{
    std::string szResult(text);
    std::ranges::replace_if(szResult, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
    return szResult;
}
