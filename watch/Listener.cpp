#include "Listener.h"

#include <arpa/inet.h>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>

namespace {

[[noreturn]] void ThrowErrno(const std::string& szStep)
{
    throw std::system_error(errno, std::generic_category(), szStep);
}

std::string TextOfAddress(const sockaddr_in& address)
{
    char szAddress[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address.sin_addr, szAddress, sizeof szAddress);
    return std::format("{}:{}", szAddress, ntohs(address.sin_port));
}

CFileDescriptor Listen(in_addr address, std::uint16_t nPort)
{
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr = address;
    local.sin_port = htons(nPort);
    const std::string szStep = "cannot listen on " + TextOfAddress(local);

    CFileDescriptor fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (fd.Get() < 0) {
        ThrowErrno(szStep);
    }
    // A watch that is started again finds its port taken by its own ended connections otherwise.
    const int nOn = 1;
    setsockopt(fd.Get(), SOL_SOCKET, SO_REUSEADDR, &nOn, sizeof nOn);
    if (bind(fd.Get(), reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0 ||
        listen(fd.Get(), SOMAXCONN) != 0) {
        ThrowErrno(szStep);
    }
    return fd;
}

} // namespace

CListener::CListener(std::string szName, in_addr address, std::uint16_t nPort, Handler handler, CLog& log)
    : m_szName(std::move(szName)), m_handler(std::move(handler)), m_log(log), m_socket(Listen(address, nPort)),
      m_acceptor([this] { AcceptUntilStopped(); })
{
}

CListener::~CListener()
{
    m_stop.Raise();
}

std::uint16_t CListener::Port() const
{
    sockaddr_in local{};
    socklen_t nSize = sizeof local;
    if (getsockname(m_socket.Get(), reinterpret_cast<sockaddr*>(&local), &nSize) != 0) {
        ThrowErrno("getsockname");
    }
    return ntohs(local.sin_port);
}

void CListener::AcceptUntilStopped()
{
    pollfd waits[] = {{m_socket.Get(), POLLIN, 0}, {m_stop.Descriptor(), POLLIN, 0}};
    while (!m_stop.IsRaised()) {
        poll(waits, std::size(waits), -1);
        AcceptOne();
    }
    m_workers.clear();
}

void CListener::AcceptOne()
{
    sockaddr_in peer{};
    socklen_t nSize = sizeof peer;
    CFileDescriptor socket(accept4(m_socket.Get(), reinterpret_cast<sockaddr*>(&peer), &nSize, SOCK_CLOEXEC));
    if (socket.Get() < 0) {
        if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
            // The connection stays in the queue and the port stays readable: give the others time to end.
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        return;
    }
    m_workers.remove_if([](const SWorker& worker) { return worker.bDone.load(); });
    const std::string szPeer = TextOfAddress(peer);
    if (m_workers.size() >= MOST_CONNECTIONS) {
        m_log.Line("{}: turned away {}", m_szName, szPeer);
        return;
    }
    SWorker& worker = m_workers.emplace_back();
    worker.thread = std::jthread([this, &worker, szPeer, own = std::move(socket)]() mutable {
        Serve(std::move(own), szPeer);
        worker.bDone = true;
    });
}

void CListener::Serve(CFileDescriptor socket, const std::string& szPeer)
{
    m_log.Line("{}: connection from {}", m_szName, szPeer);
    try {
        CConnection connection(std::move(socket), m_stop);
        m_handler(connection);
        connection.SayGoodbye();
    } catch (const CPeerClosed&) {
    } catch (const CStopping&) {
    } catch (const std::exception& error) {
        m_log.Line("{}: gave up: {}", m_szName, error.what());
    }
    m_log.Line("{}: closed", m_szName);
}
