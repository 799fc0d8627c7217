#include "Listener.h"

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <system_error>

namespace {

std::string TextOfAddress(const sockaddr_in& address)
{
    char szAddress[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address.sin_addr, szAddress, sizeof szAddress);
    return std::format("{}:{}", szAddress, ntohs(address.sin_port));
}

void SetOption(const CFileDescriptor& socket, int nLevel, int nOption)
{
    const int nOn = 1;
    setsockopt(socket.Get(), nLevel, nOption, &nOn, sizeof nOn);
}

CFileDescriptor Listen(in_addr address, std::uint16_t nPort)
{
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr = address;
    local.sin_port = htons(nPort);
    CFileDescriptor fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    std::signal(SIGPIPE, SIG_IGN);
    // A watch that is started again finds its port taken by its own ended connections otherwise.
    SetOption(fd, SOL_SOCKET, SO_REUSEADDR);
    if (bind(fd.Get(), reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0 ||
        listen(fd.Get(), SOMAXCONN) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot listen on " + TextOfAddress(local));
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
    shutdown(m_socket.Get(), SHUT_RDWR);
    m_acceptor.join();
    const std::lock_guard lock(m_mutex);
    for (const SWorker& worker : m_workers) {
        shutdown(worker.socket.Get(), SHUT_RDWR);
    }
}

std::uint16_t CListener::Port() const
{
    sockaddr_in local{};
    socklen_t nSize = sizeof local;
    getsockname(m_socket.Get(), reinterpret_cast<sockaddr*>(&local), &nSize);
    return ntohs(local.sin_port);
}

void CListener::AcceptUntilStopped()
{
    for (;;) {
        sockaddr_in peer{};
        socklen_t nSize = sizeof peer;
        CFileDescriptor socket(accept4(m_socket.Get(), reinterpret_cast<sockaddr*>(&peer), &nSize, SOCK_CLOEXEC));
        if (socket.Get() >= 0) {
            SetOption(socket, IPPROTO_TCP, TCP_NODELAY);
            SWorker& worker = m_workers.emplace_back(std::move(socket));
            worker.thread = std::jthread([this, &worker, szPeer = TextOfAddress(peer)] { Serve(worker, szPeer); });
        } else if (errno == EINVAL) { // shut down; anything else is the fault of one connection
            return;
        }
    }
}

void CListener::Serve(SWorker& worker, const std::string& szPeer)
{
    m_log.Line("{}: connection from {}", m_szName, szPeer);
    try {
        CConnection connection(worker.socket.Get());
        m_handler(connection);
        connection.SayGoodbye();
    } catch (const CPeerClosed&) { // NOLINT(bugprone-empty-catch): it has said all, and that is told below
    } catch (const std::exception& error) {
        m_log.Line("{}: gave up: {}", m_szName, error.what());
    }
    {
        const std::lock_guard lock(m_mutex);
        worker.socket = {};
    }
    m_log.Line("{}: closed", m_szName);
}
