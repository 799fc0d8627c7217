// adb's output in sizes that only a broken or hostile watch sends, through each classifier: nothing takes long, and
// nothing takes more stack for more text. What was measured is printed.

#include "adb/AdbOutput.h"

#include "tests/kit/ProcessorTime.h"
#include "tests/kit/Replaced.h"

#include <gtest/gtest.h>

using kit::ProcessorTime;
using kit::Seconds;

namespace {

constexpr size_t kMebibyte = 1 << 20;
constexpr size_t kSize = 64 * kMebibyte;

// A judge that looks at the text again and again takes many times as long.
constexpr Seconds kLongest(3);

// Less is too little for a clock that ticks every hundredth of a second.
constexpr Seconds kMeasurable(0.035);

struct JUDGE
{
    const char* pszName;
    ADB_EXIT_CODE (*pfnClassify)(std::string_view);
};
constexpr JUDGE kKillServer = {"kill-server", ClassifyKillServerOutput};
constexpr JUDGE kConnect = {"connect", ClassifyConnectOutput};
constexpr JUDGE kPair = {"pair", ClassifyPairOutput};
constexpr JUDGE kInstall = {"install", ClassifyInstallOutput};

// The piece again and again, nSize bytes of it.
std::string Repeated(std::string_view piece, size_t nSize)
{
    std::string text(piece);
    while (text.size() < nSize) {
        text += text;
    }
    text.resize(nSize - nSize % piece.size());
    return text;
}

class OutputLoad : public testing::Test
{
protected:
    OutputLoad() : m_messageBox(kit::Returns(IDOK))
    {
        m_messageBox.Optional();
    }

    // The stack of a test is some megabytes: a byte of it for each byte of text would not do.
    static void Expect(const JUDGE& judge, const std::string& output, ADB_EXIT_CODE nExpected)
    {
        const Seconds begin = ProcessorTime();
        EXPECT_EQ(judge.pfnClassify(output), nExpected) << judge.pszName;
        const Seconds taken = ProcessorTime() - begin;
        EXPECT_LT(taken, kLongest) << judge.pszName;
        const auto dBytes = static_cast<double>(output.size());
        printf("%-12s %6.1f MiB %9.0f ms", judge.pszName, dBytes / kMebibyte, taken.count() * 1e3);
        if (taken > kMeasurable) {
            printf(" %9.0f MB/s", dBytes / 1e6 / taken.count());
        }
        printf("\n");
    }

    static void ExpectAll(const std::string& output, ADB_EXIT_CODE nExpected)
    {
        for (const JUDGE& judge : {kKillServer, kConnect, kPair, kInstall}) {
            Expect(judge, output, nExpected);
        }
    }

    // The boxes that were shown.
    REPLACED(MessageBoxW) m_messageBox;
};

TEST_F(OutputLoad, OneLineThatNobodyKnows)
{
    ExpectAll(std::string(kSize, 'x'), ADB_PARSE_ERROR);
}

TEST_F(OutputLoad, OneLineOfNuls)
{
    ExpectAll(std::string(kSize, '\0'), ADB_PARSE_ERROR);
}

TEST_F(OutputLoad, OneLineOfLoneCarriageReturns)
{
    ExpectAll(std::string(kSize, '\r'), ADB_PARSE_ERROR);
}

TEST_F(OutputLoad, NothingButLineFeeds)
{
    ExpectAll(std::string(kSize, '\n'), ADB_PARSE_ERROR);
}

TEST_F(OutputLoad, OneKnownLine)
{
    const std::string rest(kSize, 'x');
    Expect(kKillServer, "cannot connect to daemon at tcp:" + rest, KILL_SEVER_NOT_STARTED);
    Expect(kConnect, "connected to " + rest, ADB_SUCCESS);
    Expect(kPair, "Successfully paired to " + rest, ADB_SUCCESS);
    Expect(kInstall, "Success" + rest, ADB_SUCCESS);
}

TEST_F(OutputLoad, TheLineThatDecidesComesLast)
{
    const std::string lines = Repeated("* daemon started successfully\r\n", kSize);
    Expect(kConnect, lines + "already connected to x", CONNECT_ALREADY_CONNECTED);
    Expect(kPair, lines + "Failed: Unable to start pairing client.", PAIR_FAILED);
    Expect(kInstall, lines + "adb.exe: device offline", INSTALL_DEVICE_OFFLINE);
    Expect(kInstall, Repeated("Performing Streamed Install\n", kSize) + "Success", ADB_SUCCESS);
}

// The search for the failure's name, on lines that hold it at the very end, or almost hold it all along.
class FailureLoad : public OutputLoad, public testing::WithParamInterface<const char*>
{
};

TEST_P(FailureLoad, TheNameIsSoughtOnce)
{
    const std::string line = "adb: failed to install " + Repeated(GetParam(), kSize);
    Expect(kInstall, line, INSTALL_FAILED);
    Expect(kInstall, line + ": Failure [INSTALL_FAILED_ABORTED: x]", INSTALL_FAILED_ABORTED);
}

INSTANTIATE_TEST_SUITE_P(Lines, FailureLoad,
                         testing::Values("x", ":", " ", ": ", ": Failure ", ": Failure [", ": Failure [a",
                                         ": Failure [INSTALL_FAILED_ABORTED]"));

TEST_F(OutputLoad, ANameWithoutEnd)
{
    const std::string line = "adb: failed to install x: Failure [" + std::string(kSize, 'A');
    Expect(kInstall, line, INSTALL_FAILED);
    Expect(kInstall, line + "]", INSTALL_FAILED);
    EXPECT_EQ(m_messageBox.Calls(), 0u);
    Expect(kInstall, line + ":", INSTALL_FAILED_KALVO_UNKNOWN_ERROR);
    EXPECT_EQ(m_messageBox.Calls(), 1u);
}

} // namespace
