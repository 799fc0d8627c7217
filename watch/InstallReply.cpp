#include "InstallReply.h"

#include <algorithm>
#include <format>

CReplies::CReplies(std::vector<std::string> replies) : m_replies(std::move(replies)) {}

std::string CReplies::Next()
{
    const std::lock_guard lock(m_mutex);
    const std::string& szReply = m_replies[m_nNext];
    m_nNext = std::min(m_nNext + 1, m_replies.size() - 1);
    return szReply;
}

CInstallReply::CInstallReply(std::string szText)
    : m_szText(std::move(szText)), m_bSized(false), m_nSize(m_szText.size() + 1)
{
}

CInstallReply::CInstallReply(std::string szText, std::uint64_t nSize)
    : m_szText(std::move(szText)), m_bSized(true), m_nSize(nSize)
{
}

std::string CInstallReply::NextPiece(std::size_t nMost)
{
    const std::uint64_t nEnd = std::max(m_nGiven, std::min({m_nSize, m_nStop, m_nGiven + nMost}));
    std::string szPiece;
    szPiece.reserve(nEnd - m_nGiven);
    while (m_nGiven < nEnd) {
        const bool bLast = m_nGiven + 1 == m_nSize;
        szPiece += m_nGiven < m_szText.size() ? m_szText[m_nGiven] : bLast ? '\n' : '.';
        ++m_nGiven;
    }
    return szPiece;
}

std::string CInstallReply::Summary() const
{
    return m_bSized ? std::format("{} bytes", m_nSize) : m_szText;
}
