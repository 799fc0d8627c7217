// Someone who throws bytes at the watch's ports: a stranger, or a trusted computer gone mad.
#pragma once

#include "Computer.h"

#include <random>

// What is thrown depends on the seed alone, but for keys and what TLS draws at random. Every function throws once at
// each port unless it says otherwise, and returns whether the watch then closed the connection, as it should.
class CGarbage
{
public:
    CGarbage(std::uint16_t nPairingPort, std::uint16_t nDebuggingPort, unsigned nSeed);

    bool ThrowRandomBytes();

    // The beginning of a TLS handshake, most of the time with one byte changed.
    bool ThrowPartOfATlsHandshake();

    // A greeting with one bit changed, cut off somewhere. Debugging only.
    bool ThrowDamagedGreeting();

    // A pairing with the right code and one bit of it changed, in the agreement on a key or in what the computer tells
    // of itself, where the bit may be one that nobody reads. Pairing only. False when there is no agreement and the
    // watch pairs all the same.
    bool ThrowDamagedPairing(const std::string& szCode);

    // Messages of all kinds without sense, with services to install and others. Debugging only.
    bool ThrowMadMessages(const CComputer& trusted);

    bool ThrowRandomBytesInsideTls(const CComputer& trusted);

private:
    ByteVector RandomBytes();
    std::uint8_t& AnyByteOf(ByteVector& bytes);
    bool Throw(std::uint16_t nPort, ByteView bytes) const;

    std::uint16_t m_nPairingPort;
    std::uint16_t m_nDebuggingPort;
    std::mt19937 m_generator;
    CComputer m_stranger{"x"};
    ByteVector m_hello; // with which a TLS client begins
};
