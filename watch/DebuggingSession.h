// One computer at the debugging port.
#pragma once

#include "AdbMessage.h"
#include "InstallStream.h"
#include "PairedKeys.h"

#include <map>
#include <memory>

// What all computers' sessions share.
struct SDevice
{
    const SOptions& options;
    SSL_CTX* tls;
    CPairedKeys& keys;
    CReplies& replies;
    CLog& log;
};

// Greets the computer, makes sure that its key is trusted, then serves its streams until it leaves. Of all services
// only installs are granted, except by a device that floods.
class CDebuggingSession
{
public:
    // The most streams that one computer may have open; adb needs one per command that runs.
    static constexpr std::size_t MOST_STREAMS = 8;

    CDebuggingSession(CConnection& connection, const SDevice& device);

    // Throws CConnectionError for everything that is not the protocol.
    void Run();

private:
    struct SStream
    {
        std::uint32_t nTheirId;
        std::unique_ptr<CService> service;
        bool bAwaitsOkay = false;
    };

    using Streams = std::map<std::uint32_t, SStream>;

    void ReadGreeting();
    bool StartTls();
    void Serve();
    void RefuseConsent();
    void StayMute();

    void OnOpen(const SAdbMessage& message);
    std::unique_ptr<CService> OpenService(std::string_view service) const;
    void OnOkay(const SAdbMessage& message);
    void OnWrite(const SAdbMessage& message);
    void OnClose(const SAdbMessage& message);

    Streams::iterator Find(const SAdbMessage& message);
    void ContinueReply(Streams::iterator stream);
    SAdbMessage Receive();
    void Send(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload = {});

    CConnection& m_connection;
    const SDevice& m_device;
    bool m_bCheckSums = true;
    bool m_bGreetedBefore = false;
    std::size_t m_nMostPayload = 0;
    std::uint32_t m_nLastId = 0;
    Streams m_streams; // by our id
};
