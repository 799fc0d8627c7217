// What the package manager says after an install.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

// The replies of the successive installs, in the order of the command line. The last one repeats. Safe to use from
// several threads.
class CReplies
{
public:
    // At least one.
    explicit CReplies(std::vector<std::string> replies);

    std::string Next();

private:
    std::mutex m_mutex;
    std::vector<std::string> m_replies;
    std::size_t m_nNext = 0;
};

// One reply, cut into pieces as they are sent.
class CInstallReply
{
public:
    // The text and a line feed.
    explicit CInstallReply(std::string szText);

    // Exactly `nSize` bytes: the text, as many dots as it takes, and a line feed; of a smaller size only the beginning.
    CInstallReply(std::string szText, std::uint64_t nSize);

    // From that many bytes on nothing more is given, although it is not the end.
    void StopAfter(std::uint64_t nSize)
    {
        m_nStop = nSize;
    }

    // The next bytes, at most `nMost`; none when there are no more.
    std::string NextPiece(std::size_t nMost);

    // Whether all of it has been given.
    bool IsGiven() const
    {
        return m_nGiven == m_nSize;
    }

    std::uint64_t SizeGiven() const
    {
        return m_nGiven;
    }

    // For the log: the text, or of a reply with a size of its own, that size.
    std::string Summary() const;

private:
    std::string m_szText;
    bool m_bSized;
    std::uint64_t m_nSize;
    std::uint64_t m_nStop = UINT64_MAX;
    std::uint64_t m_nGiven = 0;
};
