// Addresses as text and back, and the gateway of this computer. Windows Sockets must be started.
#pragma once

#include "app/ground/Platform.h"

class CWinSockHelper
{
public:
    // A dotted address with its terminator.
    static constexpr size_t kIpv4TextLength = 16;

    // Finds the IPv4 gateway that this computer uses toward the internet; sends nothing. TRUE and
    // its dotted text, or FALSE and the buffer untouched. Ends the process, after a report, when
    // the system knows no way or cannot tell.
    static BOOL GetDefaultGateway(WCHAR (&szGateway)[kIpv4TextLength]);

    // A dotted IPv4 address, or an IPv6 address of eight groups in upper-case digits, as a socket
    // address. nLength is the size of pAddress in bytes, then the size written. Any other form of
    // address is refused: FALSE, and what pAddress points at is of no use.
    static BOOL StringToAddress(PCWSTR pszAddress, SOCKADDR* pAddress, INT& nLength);

    // The dotted text of an address in network order. FALSE, and an empty text, when the system cannot
    // make it.
    static BOOL Ipv4ToString(const IN_ADDR* pAddress, CStringW& szAddress);

    // The text of an IPv4 or IPv6 socket address with its port ("192.168.1.100:43210"; without
    // colon and port when the port is 0). TRUE also when the system cannot make it: the text is empty
    // then. FALSE, and szAddress left alone, for other families.
    static BOOL AddressToString(const SOCKADDR* pAddress, CStringW& szAddress);

    // The text of an IPv4 or IPv6 socket address without its port. FALSE, and an empty text, when the
    // system cannot make it. FALSE, and szAddress left alone, for other families.
    static BOOL AddressToIpString(const SOCKADDR* pAddress, CStringW& szAddress);
};
