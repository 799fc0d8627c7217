// Somebody who listens on 127.0.0.1, on a free port of the system's choice.
#pragma once

#include <winsock2.h>

#include <atomic>
#include <string>
#include <thread>

class CListener
{
public:
    enum MANNER
    {
        kRefuses,   // nobody listens: the port is only kept from others
        kStaysOpen, // takes connections and says nothing
        kHangsUp,   // takes connections and closes them at once
    };

    // Throws CLost when there is no port to be had.
    explicit CListener(MANNER nManner);
    ~CListener();
    CListener(const CListener&) = delete;
    CListener& operator=(const CListener&) = delete;

    std::wstring Port() const;
    // "127.0.0.1:49152"
    std::wstring Address() const;
    int Accepted() const
    {
        return m_nAccepted;
    }

private:
    void Accept(MANNER nManner);

    SOCKET m_socket;
    int m_nPort = 0;
    std::atomic<int> m_nAccepted = 0;
    std::atomic<bool> m_bStopped = false;
    std::thread m_thread;
};

// Whether somebody listens on a port of 127.0.0.1.
bool IsListening(int nPort);

SOCKADDR_IN OwnAddress(int nPort);
