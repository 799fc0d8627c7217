#include "imports/FaultList.h"

#include <gtest/gtest.h>

namespace {

CFaultList Parsed(std::wstring_view szList)
{
    std::wstring szWrong;
    auto list = CFaultList::Parse(szList, szWrong);
    EXPECT_TRUE(list.has_value());
    return list ? *list : CFaultList();
}

// Which of the first five calls fail.
std::string Pattern(std::wstring_view szList, const std::vector<std::wstring>& texts = {})
{
    CFaultList list = Parsed(szList);
    std::string pattern;
    for (int n = 0; n < 5; ++n) {
        pattern += list.OnCall("F", texts) != nullptr ? 'x' : '.';
    }
    return pattern;
}

} // namespace

TEST(FaultList, AnEmptyTextIsAnEmptyList)
{
    EXPECT_TRUE(Parsed(L"").Faults().empty());
}

TEST(FaultList, WithoutANumberEveryCallFails)
{
    EXPECT_EQ(Pattern(L"F=fail:5"), "xxxxx");
}

TEST(FaultList, ANumberNamesOneCall)
{
    EXPECT_EQ(Pattern(L"F@2=fail:5"), ".x...");
}

TEST(FaultList, APlusMeansAllAfterItToo)
{
    EXPECT_EQ(Pattern(L"F@3+=fail:5"), "..xxx");
}

TEST(FaultList, SeveralFaultsOfOneFunctionAdd)
{
    EXPECT_EQ(Pattern(L"F@1=fail:5;F@4+=ret:7"), "x..xx");
}

TEST(FaultList, ATextPicksCallsAndOnlyThoseAreCounted)
{
    CFaultList list = Parsed(L"F@2#Tools\\ADB.exe=fail:32");
    const std::vector<std::wstring> adb = {L"1", L"C:\\tools\\adb.exe"};
    EXPECT_EQ(list.OnCall("F", adb), nullptr);
    EXPECT_EQ(list.OnCall("F", {L"C:\\tools\\other.exe"}), nullptr);
    EXPECT_EQ(list.OnCall("G", adb), nullptr);
    EXPECT_NE(list.OnCall("F", adb), nullptr);
}

TEST(FaultList, FailGivesTheError)
{
    const CFaultList list = Parsed(L"F=fail:0x80004005");
    const FAULT& fault = list.Faults().front();
    EXPECT_EQ(fault.kind, FAULT_KIND::Fail);
    EXPECT_EQ(fault.dwError, std::optional<DWORD>(0x80004005));
}

TEST(FaultList, NullGivesTheError)
{
    const CFaultList list = Parsed(L"F=null:1812");
    EXPECT_EQ(list.Faults().front().kind, FAULT_KIND::Null);
    EXPECT_EQ(list.Faults().front().dwError, std::optional<DWORD>(1812));
}

TEST(FaultList, RetGivesTheResultAndTheErrorIfThereIsOne)
{
    const CFaultList list = Parsed(L"F=ret:-1;G=ret:0:87");
    EXPECT_EQ(list.Faults()[0].kind, FAULT_KIND::Return);
    EXPECT_EQ(list.Faults()[0].nResult, -1);
    EXPECT_EQ(list.Faults()[0].dwError, std::nullopt);
    EXPECT_EQ(list.Faults()[1].nResult, 0);
    EXPECT_EQ(list.Faults()[1].dwError, std::optional<DWORD>(87));
}

TEST(FaultList, HangHasNoNumber)
{
    EXPECT_EQ(Parsed(L"F@2=hang").Faults().front().kind, FAULT_KIND::Hang);
    EXPECT_EQ(Pattern(L"F@2=hang"), ".x...");
}

class WrongFaultList : public testing::TestWithParam<const wchar_t*>
{
};

TEST_P(WrongFaultList, IsRefusedAndTheWrongPartNamed)
{
    std::wstring szWrong;
    EXPECT_FALSE(CFaultList::Parse(std::wstring(L"F=fail:5;") + GetParam(), szWrong).has_value());
    EXPECT_EQ(szWrong, GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, WrongFaultList,
                         testing::Values(L"F", L"=fail:5", L"F=", L"F=fail", L"F=fail:", L"F=fail:x", L"F=fail:5:6",
                                         L"F=null:1:2", L"F=break:5", L"F=hang:", L"F=hang:5", L"F=ret:", L"F=ret:1:",
                                         L"F@=fail:5", L"F@0=fail:5", L"F@-1=fail:5", L"F@x=fail:5", L"F@+=fail:5",
                                         L"F#=fail:5", L"F =ret:5x"));
