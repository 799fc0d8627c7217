// The messages themselves, byte by byte.

#include "AdbMessage.h"

#include <gtest/gtest.h>

namespace {

using Header = std::array<std::uint8_t, ADB_HEADER_SIZE>;

// WRTE from 1 to 2, 3 bytes that add up to 6.
constexpr Header WRITE = {'W', 'R', 'T', 'E', 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 6, 0, 0, 0, 0xA8, 0xAD, 0xAB, 0xBA};

std::string WhyNot(const Header& header)
{
    try {
        DecodeAdbHeader(header);
        return "accepted";
    } catch (const CConnectionError& error) {
        return error.what();
    }
}

Header WithSize(std::uint8_t n0, std::uint8_t n1, std::uint8_t n2, std::uint8_t n3)
{
    Header header = WRITE;
    header[12] = n0;
    header[13] = n1;
    header[14] = n2;
    header[15] = n3;
    return header;
}

} // namespace

TEST(AdbMessage, IsEncodedLittleEndian)
{
    const ByteVector payload = {1, 2, 3};
    ByteVector expected(WRITE.begin(), WRITE.end());
    expected.insert(expected.end(), payload.begin(), payload.end());
    EXPECT_EQ(EncodeAdbMessage(EAdbCommand::Write, 1, 2, payload), expected);
}

TEST(AdbMessage, CommandsAreTheirLetters)
{
    const std::pair<EAdbCommand, std::string_view> rows[] = {
        {EAdbCommand::Connect, "CNXN"}, {EAdbCommand::StartTls, "STLS"}, {EAdbCommand::Authenticate, "AUTH"},
        {EAdbCommand::Open, "OPEN"},    {EAdbCommand::Okay, "OKAY"},     {EAdbCommand::Write, "WRTE"},
        {EAdbCommand::Close, "CLSE"},
    };
    for (const auto& [command, letters] : rows) {
        EXPECT_EQ(TextOf(ByteView(EncodeAdbMessage(command, 0, 0, {})).first(4)), letters);
    }
}

TEST(AdbMessage, HeaderIsDecoded)
{
    const SAdbHeader header = DecodeAdbHeader(WRITE);
    EXPECT_EQ(header.nCommand, static_cast<std::uint32_t>(EAdbCommand::Write));
    EXPECT_EQ(header.nArgument0, 1U);
    EXPECT_EQ(header.nArgument1, 2U);
    EXPECT_EQ(header.nPayloadSize, 3U);
    EXPECT_EQ(header.nCheckSum, 6U);
}

TEST(AdbMessage, EveryDamagedBitOfCommandOrMagicIsSeen)
{
    for (const std::size_t nAt : {0U, 1U, 2U, 3U, 20U, 21U, 22U, 23U}) {
        for (int nBit = 0; nBit < 8; ++nBit) {
            Header header = WRITE;
            header[nAt] ^= static_cast<std::uint8_t>(1 << nBit);
            EXPECT_TRUE(WhyNot(header).starts_with("not an adb message"));
        }
    }
}

TEST(AdbMessage, WhatIsNoneIsToldByItsFirstBytes)
{
    EXPECT_EQ(WhyNot({0x16, 0x03, 0x01, 0x0A}), "not an adb message: 16 03 01 0a");
}

TEST(AdbMessage, PayloadIsAtMostOneMebibyte)
{
    EXPECT_EQ(WhyNot(WithSize(0, 0, 0, 0)), "accepted");
    EXPECT_EQ(WhyNot(WithSize(0, 0, 0x10, 0)), "accepted");
    EXPECT_EQ(WhyNot(WithSize(1, 0, 0x10, 0)), "a message announced 1048577 bytes");
    EXPECT_EQ(WhyNot(WithSize(0xFF, 0xFF, 0xFF, 0xFF)), "a message announced 4294967295 bytes");
}

TEST(AdbMessage, CheckSumIsTheSumOfTheBytes)
{
    SAdbMessage message{DecodeAdbHeader(WRITE), {1, 2, 3}};
    EXPECT_TRUE(message.AddsUp());
    message.payload = {255, 255};
    EXPECT_FALSE(message.AddsUp());
    message.header.nCheckSum = 510;
    EXPECT_TRUE(message.AddsUp());
}
