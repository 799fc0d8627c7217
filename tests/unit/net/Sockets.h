// Windows Sockets for the length of a scope, as start-up gives them to the product.
#pragma once

#include "app/ground/Platform.h"

#include <stdexcept>

class Sockets
{
public:
    Sockets()
    {
        WSADATA data;
        if (WSAStartup(MAKEWORD(2, 2), &data) != 0) {
            throw std::runtime_error("no Windows Sockets");
        }
    }

    ~Sockets()
    {
        WSACleanup();
    }

    Sockets(const Sockets&) = delete;
    Sockets& operator=(const Sockets&) = delete;
};

// The address with this text and port.
inline SOCKADDR_IN MakeAddress(PCWSTR pszAddress, u_short nPort)
{
    SOCKADDR_IN address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(nPort);
    InetPtonW(AF_INET, pszAddress, &address.sin_addr);
    return address;
}
