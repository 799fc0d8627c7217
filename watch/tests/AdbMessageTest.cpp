// The messages themselves, byte by byte.

#include "AdbMessage.h"

#include <gtest/gtest.h>

TEST(AdbMessage, IsEncodedLittleEndian)
{
    // From 1 to 2, 3 bytes that add up to 6.
    const ByteVector expected = {'W', 'R', 'T', 'E', 1, 0, 0,    0,    2,    0,    0, 0, 3, 0,
                                 0,   0,   6,   0,   0, 0, 0xA8, 0xAD, 0xAB, 0xBA, 1, 2, 3};
    EXPECT_EQ(EncodeAdbMessage(EAdbCommand::Write, 1, 2, ByteVector{1, 2, 3}), expected);
}

TEST(AdbMessage, CommandsAreTheirLetters)
{
    const std::pair<EAdbCommand, std::string_view> rows[] = {
        {EAdbCommand::Connect, "CNXN"}, {EAdbCommand::StartTls, "STLS"}, {EAdbCommand::Authenticate, "AUTH"},
        {EAdbCommand::Open, "OPEN"},    {EAdbCommand::Okay, "OKAY"},     {EAdbCommand::Write, "WRTE"},
        {EAdbCommand::Close, "CLSE"},
    };
    for (const auto& [command, letters] : rows) {
        EXPECT_EQ(TextOf(EncodeAdbMessage(command, 0, 0)).substr(0, 4), letters);
    }
}
