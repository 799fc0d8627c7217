// A TCP port and the threads of its connections.
#pragma once

#include "Connection.h"
#include "FileDescriptor.h"
#include "Log.h"

#include <list>
#include <netinet/in.h>
#include <thread>

// Listens from construction on. Every connection gets a thread of its own and a pair of events, "NAME: connection from
// ADDRESS:PORT" and "NAME: closed"; a connection that ends for any reason but the peer's leaving also tells
// "NAME: gave up: REASON".
class CListener
{
public:
    using Handler = std::function<void(CConnection&)>;

    // Port 0 lets the system choose. Throws std::system_error when the port cannot be had. The handler is called from
    // many threads at a time. A connection that a computer breaks must not end the process, so SIGPIPE is ignored from
    // here on.
    CListener(std::string szName, in_addr address, std::uint16_t nPort, Handler handler, CLog& log);

    // Breaks every connection off and waits for its end.
    ~CListener();

    CListener(const CListener&) = delete;
    CListener& operator=(const CListener&) = delete;

    std::uint16_t Port() const;

private:
    struct SWorker
    {
        CFileDescriptor socket; // none once the connection has ended
        std::jthread thread;
    };

    void AcceptUntilStopped();
    void Serve(SWorker& worker, const std::string& szPeer);

    std::string m_szName;
    Handler m_handler;
    CLog& m_log;
    CFileDescriptor m_socket;
    std::mutex m_mutex;           // of the workers' sockets
    std::list<SWorker> m_workers; // of all connections ever: a watch lives for a test
    std::jthread m_acceptor;      // last: it uses all the others
};
