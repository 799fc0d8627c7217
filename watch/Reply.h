// What the watch answers to an install.
#pragma once

#include "Options.h"

#include <mutex>

// One reply, cut into pieces as they are sent.
class CReply
{
public:
    // The text and a line feed, as long as the options want it.
    CReply(std::string szText, const SOptions& options);

    // The next bytes; none when there are no more.
    std::string NextPiece();

    // Whether it has been given to its end, which a reply that stops has not.
    bool IsGiven() const
    {
        return m_bEnds && m_nGiven == m_szBytes.size();
    }

    std::size_t SizeGiven() const
    {
        return m_nGiven;
    }

    const std::string& Text() const
    {
        return m_szText;
    }

private:
    std::string m_szText;
    std::string m_szBytes;
    bool m_bEnds;
    std::size_t m_nGiven = 0;
};

// The replies of the successive installs, in the order of the command line. The last one repeats. Safe to use from
// several threads.
class CReplies
{
public:
    // The options must outlive the object.
    explicit CReplies(const SOptions& options) : m_options(options) {}

    CReply Next();

private:
    const SOptions& m_options;
    std::mutex m_mutex;
    std::size_t m_nNext = 0;
};
