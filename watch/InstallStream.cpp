#include "InstallStream.h"

#include "Connection.h"

#include <algorithm>
#include <charconv>
#include <format>

namespace {

constexpr std::string_view SERVICE = "exec:cmd package ";
constexpr std::string_view COMMAND = "install";
constexpr std::string_view SIZE_SWITCH = "-S";
constexpr std::string_view DISK_REPLY = "Failure [INSTALL_FAILED_MEDIA_UNAVAILABLE: package cannot be stored]";

// The next blank-separated word of `text`, which is shortened by it, without the quotes that adb puts around arguments.
std::string_view TakeWord(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(word.size());
    if (word.size() >= 2 && word.front() == '\'' && word.back() == '\'') {
        word = word.substr(1, word.size() - 2);
    }
    return word;
}

std::optional<std::uint64_t> ParseSize(std::string_view word)
{
    std::uint64_t nSize = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), nSize);
    if (error != std::errc() || end != word.data() + word.size()) {
        return std::nullopt;
    }
    return nSize;
}

} // namespace

std::optional<SInstallRequest> ParseInstallService(std::string_view service)
{
    if (!service.starts_with(SERVICE)) {
        return std::nullopt;
    }
    service.remove_prefix(SERVICE.size());
    if (TakeWord(service) != COMMAND) {
        return std::nullopt;
    }
    SInstallRequest request;
    while (!service.empty()) {
        if (TakeWord(service) == SIZE_SWITCH) {
            request.nSize = ParseSize(TakeWord(service));
        }
    }
    return request;
}

CInstallStream::CInstallStream(const SInstallRequest& request, const SOptions& options, CReplies& replies, CLog& log)
    : m_options(options), m_replies(replies), m_log(log), m_nSize(request.nSize.value_or(0))
{
    if (!request.nSize) {
        Refuse("no size", "Error: must either specify a package size or an APK file");
        return;
    }
    if (m_nSize > LARGEST_PACKAGE) {
        Refuse(std::format("{} bytes", m_nSize), "Failure [INSTALL_FAILED_INSUFFICIENT_STORAGE: package too large]");
        return;
    }
    m_log.Line("install: receiving {} bytes", m_nSize);
    try {
        m_pFile = std::make_unique<CPackageFile>(m_options.store);
    } catch (const CDiskError& error) {
        Refuse(error.what(), DISK_REPLY);
    }
    Take({}); // an empty package is complete at once
}

CInstallStream::~CInstallStream()
{
    if (m_pFile) {
        m_log.Line("install: broken off after {} of {} bytes", m_nReceived, m_nSize);
    } else if (m_reply) {
        m_log.Line("install: broken off after {} bytes of the reply", m_reply->SizeGiven());
    } else if (!m_bDone) {
        m_log.Line("install: broken off without a reply");
    }
}

void CInstallStream::Take(ByteView bytes)
{
    if (!m_pFile) {
        return;
    }
    const ByteView part = bytes.first(std::min<std::uint64_t>(bytes.size(), m_nSize - m_nReceived));
    try {
        m_pFile->Append(part);
        m_nReceived += part.size();
        if (m_options.installFault == EInstallFault::Drop && !part.empty() && m_nReceived >= m_nSize / 2) {
            throw CConnectionError("dropped on install");
        }
        if (m_nReceived == m_nSize) {
            Complete();
        }
    } catch (const CDiskError& error) {
        Refuse(error.what(), DISK_REPLY);
    }
}

void CInstallStream::Complete()
{
    m_pFile->Keep();
    m_pFile.reset();
    m_log.Line("install: stored {} bytes", m_nSize);
    if (m_options.installFault == EInstallFault::Silent) {
        m_log.Line("install: stays silent");
    } else if (m_options.installFault == EInstallFault::EndlessReply) {
        m_reply.emplace(m_replies.Next(), ENDLESS_REPLY_SIZE);
    } else if (m_options.nReplySize) {
        m_reply.emplace(m_replies.Next(), *m_options.nReplySize);
    } else {
        m_reply.emplace(m_replies.Next());
    }
    if (m_reply && m_options.nStopAfter) {
        m_reply->StopAfter(*m_options.nStopAfter);
    }
}

void CInstallStream::Refuse(std::string_view reason, std::string_view reply)
{
    m_pFile.reset();
    m_log.Line("install: refused: {}", reason);
    m_reply.emplace(std::string(reply));
}

std::string CInstallStream::NextPiece(std::size_t nMost)
{
    if (!m_reply) {
        return {};
    }
    std::string szPiece = m_reply->NextPiece(nMost);
    if (m_reply->IsGiven() && szPiece.empty()) {
        m_log.Line("install: replied {}", m_reply->Summary());
        m_reply.reset();
        m_bDone = true;
    } else if (szPiece.empty() && !m_bStopTold) {
        m_log.Line("install: stops after {} bytes of the reply", m_reply->SizeGiven());
        m_bStopTold = true;
    }
    return szPiece;
}
