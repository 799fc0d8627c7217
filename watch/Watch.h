// The emulated watch as a whole.
#pragma once

#include "Listener.h"
#include "PairedKeys.h"
#include "Reply.h"
#include "TlsIdentity.h"

// A watch with wireless debugging and pairing turned on, from construction to destruction. Both ports serve any number
// of computers at a time.
class CWatch
{
public:
    // Throws std::runtime_error when a port cannot be had or the pairings cannot be read. The log must outlive the
    // watch.
    CWatch(SOptions options, CLog& log);

    CWatch(const CWatch&) = delete;
    CWatch& operator=(const CWatch&) = delete;

    std::uint16_t DebuggingPort() const
    {
        return m_debugging.Port();
    }

    std::uint16_t PairingPort() const
    {
        return m_pairing.Port();
    }

private:
    void Pair(CConnection& connection);
    void Debug(CConnection& connection);

    const SOptions m_options;
    CLog& m_log;
    CTlsIdentity m_identity;
    bssl::UniquePtr<SSL_CTX> m_tls;
    CPairedKeys m_keys;
    CReplies m_replies;
    CListener m_pairing; // the listeners last: their connections use all the others
    CListener m_debugging;
};
