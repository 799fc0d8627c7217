#include "Journal.h"

#include <algorithm>

namespace {
constexpr std::chrono::seconds LONGEST_WAIT{20};
}

bool CJournal::WaitFor(const std::string& szLine, std::size_t nTimes)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, LONGEST_WAIT,
                              [&] { return static_cast<std::size_t>(std::ranges::count(m_lines, szLine)) >= nTimes; });
}

std::size_t CJournal::Count(const std::string& szBeginning) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<std::size_t>(
        std::ranges::count_if(m_lines, [&](const std::string& s) { return s.starts_with(szBeginning); }));
}

std::string CJournal::Text() const
{
    const std::lock_guard lock(m_mutex);
    std::string szText;
    for (const std::string& szLine : m_lines) {
        szText += szLine + '\n';
    }
    return szText;
}

void CJournal::Take(const std::string& szLine)
{
    {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(szLine);
    }
    m_changed.notify_all();
}
