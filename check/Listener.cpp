#include "check/Listener.h"

#include "check/Stopping.h"

#include <vector>

namespace {

// In milliseconds.
constexpr INT kBetweenLooks = 50;

} // namespace

SOCKADDR_IN OwnAddress(int nPort)
{
    SOCKADDR_IN address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(nPort));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool IsListening(int nPort)
{
    const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    const SOCKADDR_IN address = OwnAddress(nPort);
    const bool bConnected = connect(socket, reinterpret_cast<const SOCKADDR*>(&address), sizeof address) == 0;
    closesocket(socket);
    return bConnected;
}

CListener::CListener(MANNER nManner) : m_socket(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP))
{
    SOCKADDR_IN address = OwnAddress(0);
    int cb = sizeof address;
    if (bind(m_socket, reinterpret_cast<const SOCKADDR*>(&address), cb) != 0 ||
        getsockname(m_socket, reinterpret_cast<SOCKADDR*>(&address), &cb) != 0 ||
        (nManner != kRefuses && listen(m_socket, SOMAXCONN) != 0)) {
        closesocket(m_socket);
        throw CLost{L"no port of 127.0.0.1 can be listened on"};
    }
    m_nPort = ntohs(address.sin_port);
    if (nManner != kRefuses) {
        m_thread = std::thread([this, nManner] { Accept(nManner); });
    }
}

CListener::~CListener()
{
    m_bStopped = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    closesocket(m_socket);
}

std::wstring CListener::Port() const
{
    return std::to_wstring(m_nPort);
}

std::wstring CListener::Address() const
{
    return L"127.0.0.1:" + Port();
}

void CListener::Accept(MANNER nManner)
{
    std::vector<SOCKET> open;
    while (!m_bStopped) {
        WSAPOLLFD poll = {m_socket, POLLRDNORM, 0};
        if (WSAPoll(&poll, 1, kBetweenLooks) <= 0) {
            continue;
        }
        const SOCKET socket = accept(m_socket, nullptr, nullptr);
        if (socket == INVALID_SOCKET) {
            continue;
        }
        ++m_nAccepted;
        if (nManner == kHangsUp) {
            closesocket(socket);
        } else {
            open.push_back(socket);
        }
    }
    for (const SOCKET socket : open) {
        closesocket(socket);
    }
}
