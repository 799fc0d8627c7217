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
    CDebuggingSession(CConnection& connection, const SDevice& device) : m_connection(connection), m_device(device) {}

    // Throws CConnectionError for everything that is not the protocol.
    void Run();

private:
    struct SStream
    {
        std::uint32_t nTheirId;
        std::unique_ptr<CService> service;
        bool bAwaitsOkay = false;
    };

    bool ReadGreeting();
    bool StartTls();
    void Serve();
    void RefuseConsent();
    void StayMute();

    void OnOpen(const SAdbMessage& message);
    std::unique_ptr<CService> OpenService(std::string_view service) const;
    void OnStream(const SAdbMessage& message);
    void ContinueReply(std::uint32_t nOurId, SStream& stream);
    void Send(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload = {});

    CConnection& m_connection;
    const SDevice& m_device;
    std::uint32_t m_nLastId = 0;
    std::map<std::uint32_t, SStream> m_streams; // by our id
};
