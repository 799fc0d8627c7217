#include "DebuggingSession.h"

#include "Flood.h"

#include <thread>

namespace {

// `cmd` makes adb stream a package in one go; without it adb would copy a file and call a shell.
constexpr std::string_view BANNER = "device::ro.product.name=emulated_watch;ro.product.model=Emulated Watch;"
                                    "ro.product.device=emulated_watch;features=cmd,shell_v2,stat_v2";

// Without it and without what came with it, adb takes what the shell says as it comes.
constexpr std::string_view FLOODING_BANNER = "device::ro.product.name=emulated_watch;ro.product.model=Emulated Watch;"
                                             "ro.product.device=emulated_watch;features=";

constexpr std::chrono::milliseconds LEAVES_AFTER{500};

// Kinds of authentication messages.
constexpr std::uint32_t AUTH_TOKEN = 1;
constexpr std::uint32_t AUTH_SIGNATURE = 2;
constexpr std::size_t AUTH_TOKEN_SIZE = 20;

} // namespace

void CDebuggingSession::Run()
{
    const bool bGreetedBefore = ReadGreeting();
    const EConnectFault fault = m_device.options.connectFault;
    if (fault == EConnectFault::Mute || (fault == EConnectFault::Offline && bGreetedBefore)) {
        StayMute();
    } else if (fault == EConnectFault::Unauthorized) {
        RefuseConsent();
    } else if (StartTls()) {
        Send(EAdbCommand::Connect, ADB_VERSION, ADB_MAX_PAYLOAD,
             BytesOf(m_device.options.bFlood ? FLOODING_BANNER : BANNER));
        if (fault == EConnectFault::Offline) {
            std::this_thread::sleep_for(LEAVES_AFTER);
        } else {
            Serve();
        }
    }
}

// Whether the computer has greeted this device before. adb sums its first greeting up. When it has lost a device and
// greets it again, it knows that the device does not look at sums, and leaves even this one out.
bool CDebuggingSession::ReadGreeting()
{
    const SAdbMessage greeting = ReadAdbMessage(m_connection);
    if (greeting.command != EAdbCommand::Connect) {
        throw CConnectionError("no greeting");
    }
    return greeting.nCheckSum == 0;
}

// False when the computer's key is not trusted.
bool CDebuggingSession::StartTls()
{
    Send(EAdbCommand::StartTls, STLS_VERSION, 0);
    const bool bTrusted = m_connection.StartTls(m_device.tls, [this](X509* certificate) {
        return m_device.options.bTrustAll || m_device.keys.Contains(PublicKeyOf(certificate));
    });
    m_device.log.Line("debugging: {}", bTrusted ? "trusted" : "key not trusted");
    return bTrusted;
}

void CDebuggingSession::Serve()
{
    for (;;) {
        const SAdbMessage message = ReadAdbMessage(m_connection);
        if (message.command == EAdbCommand::Open) {
            OnOpen(message);
        } else {
            OnStream(message);
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
        nKind = ReadAdbMessage(m_connection).nArgument0;
    }
    m_device.log.Line("debugging: key not trusted");
    StayMute();
}

// Until the computer has had enough.
void CDebuggingSession::StayMute()
{
    std::uint8_t byte = 0;
    m_connection.Read({&byte, 1});
}

void CDebuggingSession::OnOpen(const SAdbMessage& message)
{
    const std::string_view text = TextOf(message.payload);
    const std::string_view service = text.substr(0, text.find('\0'));
    const std::uint32_t nTheirId = message.nArgument0;
    std::unique_ptr<CService> opened = OpenService(service);
    if (!opened) {
        m_device.log.Line("debugging: refused service {}", service);
        Send(EAdbCommand::Close, 0, nTheirId);
        return;
    }
    const std::uint32_t nOurId = ++m_nLastId;
    Send(EAdbCommand::Okay, nOurId, nTheirId);
    ContinueReply(nOurId, m_streams.emplace(nOurId, SStream{nTheirId, std::move(opened)}).first->second);
}

// Null when the service is refused.
std::unique_ptr<CService> CDebuggingSession::OpenService(std::string_view service) const
{
    const SOptions& options = m_device.options;
    if (options.bFlood && service == CBlindCopy::SERVICE) {
        return std::make_unique<CBlindCopy>();
    }
    if (options.bFlood) {
        m_device.log.Line("debugging: floods service {}", service);
        return std::make_unique<CFlood>(m_device.replies.Next());
    }
    const std::optional<std::uint64_t> nSize = InstallSizeOf(service);
    return nSize ? std::make_unique<CInstallStream>(*nSize, options, m_device.replies, m_device.log) : nullptr;
}

// Messages for a stream that has just been closed are on their way still; they find none.
void CDebuggingSession::OnStream(const SAdbMessage& message)
{
    const auto found = m_streams.find(message.nArgument1);
    if (found == m_streams.end()) {
        return;
    }
    auto& [nOurId, stream] = *found;
    if (message.command == EAdbCommand::Close) {
        m_streams.erase(found);
    } else if (message.command == EAdbCommand::Okay) {
        stream.bAwaitsOkay = false;
        ContinueReply(nOurId, stream);
    } else if (message.command == EAdbCommand::Write) {
        stream.service->Take(message.payload);
        Send(EAdbCommand::Okay, nOurId, stream.nTheirId);
        ContinueReply(nOurId, stream);
    }
}

// Sends the next piece of the answer, if it is time: a stream may have one unanswered write at most.
void CDebuggingSession::ContinueReply(std::uint32_t nOurId, SStream& stream)
{
    if (stream.bAwaitsOkay) {
        return;
    }
    const std::string szPiece = stream.service->NextPiece();
    if (!szPiece.empty()) {
        Send(EAdbCommand::Write, nOurId, stream.nTheirId, BytesOf(szPiece));
        stream.bAwaitsOkay = true;
    } else if (stream.service->IsDone()) {
        Send(EAdbCommand::Close, nOurId, stream.nTheirId);
        m_streams.erase(nOurId);
    }
}

void CDebuggingSession::Send(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload)
{
    m_connection.Write(EncodeAdbMessage(command, nArgument0, nArgument1, payload));
}
