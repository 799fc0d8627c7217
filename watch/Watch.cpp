#include "Watch.h"

#include "PairingSession.h"

#include <csignal>

CWatch::CWatch(SOptions options, CLog& log)
    : m_options(std::move(options)), m_log(log), m_tls(m_identity.MakeContext()), m_keys(m_options.pairings),
      m_replies(m_options.replies)
{
    std::signal(SIGPIPE, SIG_IGN);
    m_pPairing = std::make_unique<CListener>(
        "pairing", m_options.address, m_options.nPairingPort,
        [this](CConnection& connection) { PairWithComputer(connection, m_tls.get(), m_options, m_keys, m_log); },
        m_log);
    m_pDebugging = std::make_unique<CListener>(
        "debugging", m_options.address, m_options.nDebuggingPort,
        [this](CConnection& connection) {
            const SDevice device{m_options, m_tls.get(), m_keys, m_replies, m_log};
            CDebuggingSession(connection, device).Run();
        },
        m_log);
}
