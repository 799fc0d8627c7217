#include "Reply.h"

#include <algorithm>

namespace {
constexpr std::size_t LARGEST_PIECE = 64UL * 1024;
}

CReply::CReply(std::string szText, const SOptions& options)
    : m_szText(std::move(szText)), m_szBytes(m_szText), m_bEnds(!options.nStopAfter)
{
    if (options.nReplySize) {
        m_szBytes.resize(*options.nReplySize - 1, '.');
    }
    m_szBytes += '\n';
    if (options.nStopAfter) {
        m_szBytes.resize(std::min(m_szBytes.size(), *options.nStopAfter));
    }
}

std::string CReply::NextPiece()
{
    std::string szPiece = m_szBytes.substr(m_nGiven, LARGEST_PIECE);
    m_nGiven += szPiece.size();
    return szPiece;
}

CReply CReplies::Next()
{
    const std::lock_guard lock(m_mutex);
    const std::string& szText = m_options.replies[m_nNext];
    m_nNext = std::min(m_nNext + 1, m_options.replies.size() - 1);
    return {szText, m_options};
}
