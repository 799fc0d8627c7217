#include "DebuggingSession.h"

#include "Flood.h"

#include <algorithm>

namespace {

constexpr std::uint32_t STLS_VERSION = 0x01000000;

// `cmd` makes adb stream a package in one go; without it adb would copy a file and call a shell.
constexpr std::string_view BANNER = "device::ro.product.name=emulated_watch;ro.product.model=Emulated Watch;"
                                    "ro.product.device=emulated_watch;features=cmd,shell_v2,stat_v2";

// Without it and without what came with it, adb takes what the shell says as it comes.
constexpr std::string_view FLOODING_BANNER = "device::ro.product.name=emulated_watch;ro.product.model=Emulated Watch;"
                                             "ro.product.device=emulated_watch;features=";

// Payload sizes that a computer may ask for, whatever it says: the protocol's least, and a piece of an answer that is
// still cheap to hold.
constexpr std::size_t LEAST_PAYLOAD = 4096;
constexpr std::size_t MOST_PIECE = 64 * 1024;

constexpr std::chrono::milliseconds LEAVES_AFTER{500};

// Kinds of authentication messages.
constexpr std::uint32_t AUTH_TOKEN = 1;
constexpr std::uint32_t AUTH_SIGNATURE = 2;
constexpr std::size_t AUTH_TOKEN_SIZE = 20;

constexpr const char* WRONG_SUM = "a message's check sum is wrong";

std::string_view ServiceOf(const SAdbMessage& open)
{
    const std::string_view text = TextOf(open.payload);
    return text.substr(0, text.find('\0'));
}

} // namespace

CDebuggingSession::CDebuggingSession(CConnection& connection, const SDevice& device)
    : m_connection(connection), m_device(device)
{
}

void CDebuggingSession::Run()
{
    m_connection.Allow(m_device.options.patience);
    ReadGreeting();
    const EConnectFault fault = m_device.options.connectFault;
    if (fault == EConnectFault::Mute || (fault == EConnectFault::Offline && m_bGreetedBefore)) {
        StayMute();
    } else if (fault == EConnectFault::Unauthorized) {
        RefuseConsent();
    } else if (StartTls()) {
        Send(EAdbCommand::Connect, ADB_VERSION, ADB_MAX_PAYLOAD,
             BytesOf(m_device.options.nFlood ? FLOODING_BANNER : BANNER));
        if (fault == EConnectFault::Offline) {
            m_connection.Pause(LEAVES_AFTER);
        } else {
            Serve();
        }
    }
}

void CDebuggingSession::ReadGreeting()
{
    const SAdbMessage greeting = ReadAdbMessage(m_connection);
    if (!greeting.Is(EAdbCommand::Connect)) {
        throw CConnectionError("no greeting");
    }
    m_bCheckSums = greeting.header.nArgument0 < ADB_VERSION;
    // adb sums its first greeting up. When it has lost a device and greets it again, it knows that the device does not
    // look at sums, and leaves even this one out.
    m_bGreetedBefore = !m_bCheckSums && greeting.header.nCheckSum == 0;
    if (!m_bGreetedBefore && !greeting.AddsUp()) {
        throw CConnectionError(WRONG_SUM);
    }
    m_nMostPayload = std::clamp<std::size_t>(greeting.header.nArgument1, LEAST_PAYLOAD, MOST_PIECE);
}

// False when the computer's key is not trusted.
bool CDebuggingSession::StartTls()
{
    const ByteVector message = EncodeAdbMessage(EAdbCommand::StartTls, STLS_VERSION, 0, {});
    m_connection.Write(message);
    try {
        const auto isTrusted = [this](X509* certificate) {
            const std::optional<SPublicKey> key = PublicKeyOf(certificate);
            return m_device.options.bTrustAll || (key && m_device.keys.Contains(*key));
        };
        m_connection.StartTls(m_device.tls, isTrusted, message);
    } catch (const CKeyRefused&) {
        m_device.log.Line("debugging: key not trusted");
        return false;
    }
    m_device.log.Line("debugging: trusted");
    return true;
}

void CDebuggingSession::Serve()
{
    for (;;) {
        // adb keeps an idle connection for days, but once it begins a message, the rest follows.
        m_connection.Allow(std::nullopt);
        m_connection.WaitForData();
        m_connection.Allow(m_device.options.patience);
        const SAdbMessage message = Receive();
        if (message.Is(EAdbCommand::Open)) {
            OnOpen(message);
        } else if (message.Is(EAdbCommand::Okay)) {
            OnOkay(message);
        } else if (message.Is(EAdbCommand::Write)) {
            OnWrite(message);
        } else if (message.Is(EAdbCommand::Close)) {
            OnClose(message);
        }
    }
}

// The way of the older debugging port: the computer signs a token with each of its keys, then offers its key to the
// person, who would have to consent on the watch. Nobody does.
void CDebuggingSession::RefuseConsent()
{
    const ByteVector token(AUTH_TOKEN_SIZE, 0x5A);
    std::uint32_t nKind = AUTH_SIGNATURE;
    while (nKind == AUTH_SIGNATURE) {
        Send(EAdbCommand::Authenticate, AUTH_TOKEN, 0, token);
        const SAdbMessage answer = Receive();
        if (!answer.Is(EAdbCommand::Authenticate)) {
            throw CConnectionError("no authentication");
        }
        nKind = answer.header.nArgument0;
    }
    m_device.log.Line("debugging: key not trusted");
    StayMute();
}

// Until the computer has had enough.
void CDebuggingSession::StayMute()
{
    m_connection.Allow(std::nullopt);
    m_connection.WaitForData();
}

void CDebuggingSession::OnOpen(const SAdbMessage& message)
{
    const std::string_view service = ServiceOf(message);
    const std::uint32_t nTheirId = message.header.nArgument0;
    std::unique_ptr<CService> opened = m_streams.size() < MOST_STREAMS ? OpenService(service) : nullptr;
    if (!opened) {
        m_device.log.Line("debugging: refused service {}", service);
        Send(EAdbCommand::Close, 0, nTheirId);
        return;
    }
    const std::uint32_t nOurId = ++m_nLastId;
    Send(EAdbCommand::Okay, nOurId, nTheirId);
    ContinueReply(m_streams.emplace(nOurId, SStream{nTheirId, std::move(opened)}).first);
}

// Null when the service is refused.
std::unique_ptr<CService> CDebuggingSession::OpenService(std::string_view service) const
{
    const SOptions& options = m_device.options;
    if (options.nFlood && service == CBlindCopy::SERVICE) {
        return std::make_unique<CBlindCopy>();
    }
    if (options.nFlood) {
        m_device.log.Line("debugging: floods service {}", service);
        CInstallReply reply(m_device.replies.Next(), *options.nFlood);
        reply.StopAfter(options.nStopAfter.value_or(UINT64_MAX));
        return std::make_unique<CFlood>(std::move(reply));
    }
    const std::optional<SInstallRequest> request = ParseInstallService(service);
    return request ? std::make_unique<CInstallStream>(*request, options, m_device.replies, m_device.log) : nullptr;
}

void CDebuggingSession::OnOkay(const SAdbMessage& message)
{
    const auto stream = Find(message);
    if (stream != m_streams.end()) {
        stream->second.bAwaitsOkay = false;
        ContinueReply(stream);
    }
}

void CDebuggingSession::OnWrite(const SAdbMessage& message)
{
    const auto stream = Find(message);
    if (stream != m_streams.end()) {
        stream->second.service->Take(message.payload);
        Send(EAdbCommand::Okay, stream->first, stream->second.nTheirId);
        ContinueReply(stream);
    }
}

void CDebuggingSession::OnClose(const SAdbMessage& message)
{
    const auto stream = Find(message);
    if (stream != m_streams.end()) {
        m_streams.erase(stream);
    }
}

// Messages for a stream that has just been closed are on their way still; they find none.
CDebuggingSession::Streams::iterator CDebuggingSession::Find(const SAdbMessage& message)
{
    const auto stream = m_streams.find(message.header.nArgument1);
    const bool bTheirs = stream != m_streams.end() && stream->second.nTheirId == message.header.nArgument0;
    return bTheirs ? stream : m_streams.end();
}

// Sends the next piece of the answer, if it is time: a stream may have one unanswered write at most.
void CDebuggingSession::ContinueReply(Streams::iterator stream)
{
    auto& [nOurId, state] = *stream;
    if (state.bAwaitsOkay) {
        return;
    }
    const std::string szPiece = state.service->NextPiece(m_nMostPayload);
    if (!szPiece.empty()) {
        Send(EAdbCommand::Write, nOurId, state.nTheirId, BytesOf(szPiece));
        state.bAwaitsOkay = true;
    } else if (state.service->IsDone()) {
        Send(EAdbCommand::Close, nOurId, state.nTheirId);
        m_streams.erase(stream);
    }
}

SAdbMessage CDebuggingSession::Receive()
{
    SAdbMessage message = ReadAdbMessage(m_connection);
    if (m_bCheckSums && !message.AddsUp()) {
        throw CConnectionError(WRONG_SUM);
    }
    return message;
}

void CDebuggingSession::Send(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload)
{
    m_connection.Write(EncodeAdbMessage(command, nArgument0, nArgument1, payload));
}
