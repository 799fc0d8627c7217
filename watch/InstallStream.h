// An install as the package manager of a device sees it: a package comes in, an answer goes out.
#pragma once

#include "InstallReply.h"
#include "Log.h"
#include "Options.h"
#include "PackageFile.h"
#include "Service.h"

#include <memory>
#include <optional>
#include <string_view>

// What a service that adb asks for wants installed. The size is absent when the service names none.
struct SInstallRequest
{
    std::optional<std::uint64_t> nSize;
};

// Nothing when the service is another one. The forms known are those of streamed installs,
// `exec:cmd package 'install' -S SIZE`, with any further arguments.
std::optional<SInstallRequest> ParseInstallService(std::string_view service);

// Takes the parts of the package. Tells the log of each stage, of one that is broken off too.
class CInstallStream : public CService
{
public:
    static constexpr std::uint64_t LARGEST_PACKAGE = 256 * 1024 * 1024;

    // The three references must outlive the stream.
    CInstallStream(const SInstallRequest& request, const SOptions& options, CReplies& replies, CLog& log);
    ~CInstallStream() override;

    // What goes beyond the announced size is ignored.
    void Take(ByteView bytes) override;

    std::string NextPiece(std::size_t nMost) override;

    bool IsDone() const override
    {
        return m_bDone;
    }

private:
    void Complete();
    void Refuse(std::string_view reason, std::string_view reply);

    const SOptions& m_options;
    CReplies& m_replies;
    CLog& m_log;
    std::uint64_t m_nSize = 0;
    std::uint64_t m_nReceived = 0;
    std::unique_ptr<CPackageFile> m_pFile; // while receiving
    std::optional<CInstallReply> m_reply;  // while answering
    bool m_bStopTold = false;
    bool m_bDone = false;
};
