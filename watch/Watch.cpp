#include "Watch.h"

#include "DebuggingSession.h"
#include "PairingChannel.h"

CWatch::CWatch(SOptions options, CLog& log)
    : m_options(std::move(options)), m_log(log), m_tls(m_identity.MakeContext()), m_keys(m_options.pairings),
      m_replies(m_options),
      m_pairing(
          "pairing", m_options.address, m_options.nPairingPort, [this](CConnection& c) { Pair(c); }, log),
      m_debugging("debugging", m_options.address, m_options.nDebuggingPort, [this](CConnection& c) { Debug(c); }, log)
{
}

// The computer proves first that it knows the code; one that guesses learns no more than that it guessed wrong.
void CWatch::Pair(CConnection& connection)
{
    connection.StartTls(m_tls.get(), [](X509*) { return true; });
    CPairingChannel channel(connection, spake2_role_bob, m_options.szCode);
    const std::optional<std::string> key = channel.Receive();
    if (!key) {
        m_log.Line("pairing: wrong code");
        return;
    }
    const std::string szName = m_keys.Add(*key);
    channel.Send(EPeerInfo::DeviceName, m_options.szName);
    m_log.Line("pairing: paired {}", szName);
}

void CWatch::Debug(CConnection& connection)
{
    const SDevice device{m_options, m_tls.get(), m_keys, m_replies, m_log};
    CDebuggingSession(connection, device).Run();
}
