#include "imports/FaultList.h"

#include <gtest/gtest.h>

namespace {

CFaults Parsed(const std::wstring& szList)
{
    std::wstring szWrong;
    const auto faults = ParseFaults(szList, szWrong);
    EXPECT_TRUE(faults.has_value()) << "it makes no sense";
    return faults.value_or(CFaults());
}

// Which of the first five calls fail.
std::string Pattern(const std::wstring& szList, const std::vector<std::wstring>& texts = {})
{
    CFaults faults = Parsed(szList);
    std::string pattern;
    for (int n = 0; n < 5; ++n) {
        pattern += FaultOfCall(faults, "F", texts) != nullptr ? 'x' : '.';
    }
    return pattern;
}

} // namespace

TEST(FaultList, TellsWhichCallsFail)
{
    EXPECT_EQ(Pattern(L""), ".....");
    EXPECT_EQ(Pattern(L"F=fail:5"), "xxxxx");
    EXPECT_EQ(Pattern(L"F@2=fail:5"), ".x...");
    EXPECT_EQ(Pattern(L"G=fail:5;F@4=ret:7;F@1=hang"), "x..x.");
}

TEST(FaultList, ATextPicksCallsAndOnlyThoseAreCounted)
{
    CFaults faults = Parsed(L"F@2#tools\\adb.exe=fail:32");
    const std::vector<std::wstring> adb = {L"1", L"C:\\tools\\adb.exe"};
    EXPECT_EQ(FaultOfCall(faults, "F", adb), nullptr);
    EXPECT_EQ(FaultOfCall(faults, "F", {L"C:\\tools\\other.exe"}), nullptr);
    EXPECT_EQ(FaultOfCall(faults, "G", adb), nullptr);
    EXPECT_NE(FaultOfCall(faults, "F", adb), nullptr);
}

TEST(FaultList, TellsHowTheyFail)
{
    const CFaults faults = Parsed(L"A=fail:0x80004005;B=null:1812;C=ret:-1;D=hang");
    ASSERT_EQ(faults.size(), 4u);
    EXPECT_EQ(faults[0].nResult, std::nullopt);
    EXPECT_EQ(faults[0].dwError, std::optional<DWORD>(0x80004005));
    EXPECT_EQ(faults[1].nResult, std::optional<long long>(0));
    EXPECT_EQ(faults[1].dwError, std::optional<DWORD>(1812));
    EXPECT_EQ(faults[2].nResult, std::optional<long long>(-1));
    EXPECT_EQ(faults[2].dwError, std::nullopt);
    EXPECT_FALSE(faults[2].bHangs);
    EXPECT_TRUE(faults[3].bHangs);
}

TEST(FaultList, NamesThePartThatMakesNoSense)
{
    for (const PCWSTR pszWrong :
         {L"F", L"=fail:5", L"F=", L"F=fail", L"F=fail:", L"F=fail:x", L"F=fail:08", L"F=fail:5:6", L"F=break:5",
          L"F=hang:5", L"F=ret:", L"F=ret:5x", L"F@=fail:5", L"F@0=fail:5", L"F@-1=fail:5", L"F@x=fail:5", L"F#=fail:5",
          L"F =fail:5", L"F=fail:99999999999"}) {
        std::wstring szWrong;
        EXPECT_FALSE(ParseFaults(std::wstring(L"F=fail:5;") + pszWrong + L";F=fail:5", szWrong).has_value());
        EXPECT_EQ(szWrong, pszWrong);
    }
}
