// The emulated watch as a whole.
#pragma once

#include "DebuggingSession.h"
#include "Listener.h"
#include "Options.h"
#include "PairedKeys.h"
#include "TlsIdentity.h"

// A watch with wireless debugging and pairing turned on, from construction to destruction. Both ports serve any number
// of computers at a time, up to the limit of CListener.
class CWatch
{
public:
    // Throws std::runtime_error when a port cannot be had or the pairings cannot be read. A connection that a computer
    // breaks must not end the process, so SIGPIPE is ignored from here on. The log must outlive the watch.
    CWatch(SOptions options, CLog& log);

    CWatch(const CWatch&) = delete;
    CWatch& operator=(const CWatch&) = delete;

    std::uint16_t DebuggingPort() const
    {
        return m_pDebugging->Port();
    }

    std::uint16_t PairingPort() const
    {
        return m_pPairing->Port();
    }

private:
    const SOptions m_options;
    CLog& m_log;
    CTlsIdentity m_identity;
    bssl::UniquePtr<SSL_CTX> m_tls;
    CPairedKeys m_keys;
    CReplies m_replies;
    std::unique_ptr<CListener> m_pPairing; // the listeners last: their connections use all the others
    std::unique_ptr<CListener> m_pDebugging;
};
