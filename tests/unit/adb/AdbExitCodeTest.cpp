// The outcomes with their names and messages, as the users know them.

#include "tests/kit/Test.h"
#include "tests/unit/adb/Outcomes.h"

#include <algorithm>
#include <climits>
#include <numeric>

using namespace kit;

namespace {

using AdbExitCode = Test;

// Looked up twice, the texts are the same ones.
TEST_F(AdbExitCode, EveryOutcomeHasItsNumberNameAndMessage)
{
    for (const Outcome& outcome : kOutcomes) {
        SCOPED_TRACE(outcome.nNumber);
        EXPECT_EQ(static_cast<int>(outcome.nCode), outcome.nNumber);
        ADB_EXIT_CODE_ENTRY entry = {};
        ASSERT_TRUE(LookupAdbExitCode(outcome.nCode, entry));
        EXPECT_STREQ(entry.pszName, outcome.pszName);
        EXPECT_STREQ(entry.pszMessage, outcome.pszMessage);
        const ADB_EXIT_CODE_ENTRY described = DescribeAdbExitCode(outcome.nCode);
        EXPECT_EQ(described.pszName, entry.pszName);
        EXPECT_EQ(described.pszMessage, entry.pszMessage);
    }
}

TEST_F(AdbExitCode, NoOtherNumberIsAnOutcome)
{
    std::vector<int> numbers(2010);
    std::iota(numbers.begin(), numbers.end(), -10);
    numbers.insert(numbers.end(), {INT_MAX, INT_MIN});
    for (const int nNumber : numbers) {
        if (std::ranges::count(kOutcomes, nNumber, &Outcome::nNumber) == 0) {
            SCOPED_TRACE(nNumber);
            ADB_EXIT_CODE_ENTRY entry = {L"name", L"message"};
            EXPECT_FALSE(LookupAdbExitCode(static_cast<ADB_EXIT_CODE>(nNumber), entry));
            EXPECT_STREQ(entry.pszName, L"name");
            EXPECT_STREQ(entry.pszMessage, L"message");
            entry = DescribeAdbExitCode(static_cast<ADB_EXIT_CODE>(nNumber));
            EXPECT_STREQ(entry.pszName, L"Unknown ADB Exit Code");
            EXPECT_STREQ(entry.pszMessage, L"Unknown ADB Exit Code");
        }
    }
}

} // namespace
