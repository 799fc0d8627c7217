// An install as the package manager of a device sees it: a package comes in, an answer goes out.
#pragma once

#include "Log.h"
#include "Reply.h"
#include "Service.h"

#include <fstream>

// The size of the package that a service brings, when it is a streamed install: `exec:cmd package 'install' -S SIZE`.
std::optional<std::uint64_t> InstallSizeOf(std::string_view service);

// Takes the parts of the package into a file beside the store, which it becomes when it is whole: whoever reads the
// store sees a whole package or the one before. Tells the log of each stage, of one that is broken off too.
class CInstallStream : public CService
{
public:
    // The three references must outlive the stream.
    CInstallStream(std::uint64_t nSize, const SOptions& options, CReplies& replies, CLog& log);
    ~CInstallStream() override;

    // Throws std::runtime_error when the file cannot be written.
    void Take(ByteView bytes) override;

    std::string NextPiece() override;

    bool IsDone() const override
    {
        return m_bDone;
    }

private:
    void Complete();

    const SOptions& m_options;
    CReplies& m_replies;
    CLog& m_log;
    std::uint64_t m_nSize;
    std::uint64_t m_nReceived = 0;
    std::filesystem::path m_unfinished;
    std::ofstream m_stream;        // open while receiving
    std::optional<CReply> m_reply; // while answering
    bool m_bDone = false;
};
