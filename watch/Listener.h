// A TCP port and the threads of its connections.
#pragma once

#include "Connection.h"
#include "Log.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <netinet/in.h>
#include <string>
#include <thread>

// Listens from construction on. Every connection gets a thread of its own and a pair of events, "NAME: connection from
// ADDRESS:PORT" and "NAME: closed"; a connection that ends for any reason but the peer's leaving also tells
// "NAME: gave up: REASON". More than MOST_CONNECTIONS at a time are turned away, which keeps a flood of them harmless.
class CListener
{
public:
    static constexpr std::size_t MOST_CONNECTIONS = 32;

    using Handler = std::function<void(CConnection&)>;

    // Port 0 lets the system choose. Throws std::system_error when the port cannot be had. The handler is called from
    // many threads at a time.
    CListener(std::string szName, in_addr address, std::uint16_t nPort, Handler handler, CLog& log);

    // Breaks every connection off and waits for its end.
    ~CListener();

    CListener(const CListener&) = delete;
    CListener& operator=(const CListener&) = delete;

    std::uint16_t Port() const;

private:
    struct SWorker
    {
        std::atomic<bool> bDone = false;
        std::jthread thread;
    };

    void AcceptUntilStopped();
    void AcceptOne();
    void Serve(CFileDescriptor socket, const std::string& szPeer);

    std::string m_szName;
    Handler m_handler;
    CLog& m_log;
    CStopSignal m_stop;
    CFileDescriptor m_socket;
    std::list<SWorker> m_workers; // the accepting thread's own
    std::jthread m_acceptor;      // last: it uses all the others
};
