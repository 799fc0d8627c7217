// adb's output in sizes that only a broken or hostile watch sends, through each classifier: nothing takes long, and
// nothing takes more stack for more text. The stack of a test is some megabytes: a byte of it for each byte of text
// would not do.

#include "adb/AdbOutput.h"

#include "tests/kit/ProcessorTime.h"
#include "tests/kit/Replaced.h"

#include <gtest/gtest.h>

#include <utility>

using namespace std::string_view_literals;

namespace {

constexpr size_t kSize = 64 << 20;

// A judge that looks at the text again and again takes many times as long.
constexpr kit::Seconds kLongest(3);

using Classifier = ADB_EXIT_CODE(std::string_view);

class OutputLoad : public testing::Test
{
protected:
    // Judges the piece again and again, kSize bytes of it, between the others.
    static void Expect(Classifier& classify, ADB_EXIT_CODE nExpected, std::string_view begin, std::string_view piece,
                       std::string_view end = "")
    {
        std::string output(piece);
        while (output.size() < kSize) {
            output += output;
        }
        output.resize(kSize - kSize % piece.size());
        output.insert(0, begin);
        output += end;
        SCOPED_TRACE(testing::Message() << begin << '(' << testing::PrintToString(piece) << ")..." << end);
        const kit::Seconds before = kit::ProcessorTime();
        EXPECT_EQ(classify(output), nExpected);
        EXPECT_LT(kit::ProcessorTime() - before, kLongest);
    }

    // The boxes that were shown.
    REPLACED(MessageBoxW) m_messageBox { kit::Maybe(kit::Returns(IDOK)) };
};

TEST_F(OutputLoad, LinesThatNobodyKnows)
{
    constexpr std::pair<const char*, Classifier*> classifiers[] = {{"kill-server", ClassifyKillServerOutput},
                                                                   {"connect", ClassifyConnectOutput},
                                                                   {"pair", ClassifyPairOutput},
                                                                   {"install", ClassifyInstallOutput}};
    for (const auto& [pszCommand, pfnClassify] : classifiers) {
        SCOPED_TRACE(pszCommand);
        for (const std::string_view piece : {"x"sv, "\0"sv, "\r"sv, "\n"sv}) {
            Expect(*pfnClassify, ADB_PARSE_ERROR, "", piece);
        }
    }
}

TEST_F(OutputLoad, OneKnownLine)
{
    Expect(ClassifyKillServerOutput, KILL_SEVER_NOT_STARTED, "cannot connect to daemon at tcp:", "x");
    Expect(ClassifyConnectOutput, ADB_SUCCESS, "connected to ", "x");
    Expect(ClassifyPairOutput, ADB_SUCCESS, "Successfully paired to ", "x");
    Expect(ClassifyInstallOutput, ADB_SUCCESS, "Success", "x");
}

TEST_F(OutputLoad, TheLineThatDecidesComesLast)
{
    constexpr std::string_view line = "* daemon started successfully\r\n";
    Expect(ClassifyConnectOutput, CONNECT_ALREADY_CONNECTED, "", line, "already connected to x");
    Expect(ClassifyPairOutput, PAIR_FAILED, "", line, "Failed: Unable to start pairing client.");
    Expect(ClassifyInstallOutput, INSTALL_DEVICE_OFFLINE, "", line, "adb.exe: device offline");
    Expect(ClassifyInstallOutput, ADB_SUCCESS, "", "Performing Streamed Install\n", "Success");
}

// On lines that hold it at the very end, or almost hold it all along.
TEST_F(OutputLoad, TheNameOfAFailureIsSoughtOnce)
{
    for (const char* pszPiece :
         {"x", ":", " ", ": ", ": Failure ", ": Failure [", ": Failure [a", ": Failure [INSTALL_FAILED_ABORTED]"}) {
        constexpr std::string_view begin = "adb: failed to install ";
        Expect(ClassifyInstallOutput, INSTALL_FAILED, begin, pszPiece);
        Expect(ClassifyInstallOutput, INSTALL_FAILED_ABORTED, begin, pszPiece, ": Failure [INSTALL_FAILED_ABORTED: x]");
    }
}

TEST_F(OutputLoad, ANameWithoutEnd)
{
    constexpr std::string_view begin = "adb: failed to install x: Failure [";
    Expect(ClassifyInstallOutput, INSTALL_FAILED, begin, "A");
    Expect(ClassifyInstallOutput, INSTALL_FAILED, begin, "A", "]");
    EXPECT_EQ(m_messageBox.Calls(), 0u);
    Expect(ClassifyInstallOutput, INSTALL_FAILED_KALVO_UNKNOWN_ERROR, begin, "A", ":");
    EXPECT_EQ(m_messageBox.Calls(), 1u);
}

} // namespace
