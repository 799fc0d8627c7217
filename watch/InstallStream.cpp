#include "InstallStream.h"

#include "Connection.h"

#include <charconv>

std::optional<std::uint64_t> InstallSizeOf(std::string_view service)
{
    constexpr std::string_view BEGINNING = "exec:cmd package 'install' -S ";
    std::uint64_t nSize = 0;
    if (!service.starts_with(BEGINNING) ||
        std::from_chars(service.data() + BEGINNING.size(), service.data() + service.size(), nSize).ec != std::errc()) {
        return std::nullopt;
    }
    return nSize;
}

CInstallStream::CInstallStream(std::uint64_t nSize, const SOptions& options, CReplies& replies, CLog& log)
    : m_options(options), m_replies(replies), m_log(log), m_nSize(nSize),
      m_unfinished(options.store.string() + ".part"), m_stream(m_unfinished, std::ios::binary)
{
    m_log.Line("install: receiving {} bytes", m_nSize);
    if (m_nSize == 0) {
        Complete();
    }
}

CInstallStream::~CInstallStream() // NOLINT(bugprone-exception-escape): without a log the watch may end
{
    if (m_stream.is_open()) {
        m_log.Line("install: broken off after {} of {} bytes", m_nReceived, m_nSize);
    } else if (m_reply) {
        m_log.Line("install: broken off after {} bytes of the reply", m_reply->SizeGiven());
    }
}

void CInstallStream::Take(ByteView bytes)
{
    const std::string_view text = TextOf(bytes);
    m_stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    m_nReceived += bytes.size();
    if (m_options.bDropOnInstall && m_nReceived >= m_nSize / 2) {
        throw CConnectionError("dropped on install");
    }
    if (m_nReceived >= m_nSize) {
        Complete();
    }
}

void CInstallStream::Complete()
{
    m_stream.close();
    if (!m_stream) {
        throw std::runtime_error(std::format("{} cannot be written", m_unfinished.string()));
    }
    std::filesystem::rename(m_unfinished, m_options.store);
    m_log.Line("install: stored {} bytes", m_nSize);
    m_reply = m_replies.Next();
}

std::string CInstallStream::NextPiece()
{
    if (!m_reply) {
        return {};
    }
    std::string szPiece = m_reply->NextPiece();
    if (szPiece.empty()) {
        m_bDone = m_reply->IsGiven();
        if (m_bDone) {
            m_log.Line("install: replied {}", m_reply->Text());
        } else if (m_reply->SizeGiven() == 0) {
            m_log.Line("install: stays silent");
        } else {
            m_log.Line("install: stops after {} bytes of the reply", m_reply->SizeGiven());
        }
        m_reply.reset();
    }
    return szPiece;
}
