// The wide string class, whichever library it comes from. Linked with the product's resources, whose string table
// is what the loading is tried on.
#include <atlstr.h>

#include <resource.h>

#include <climits>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

// Copies are made here to see what becomes of them.
// NOLINTBEGIN(performance-unnecessary-copy-initialization)
namespace {

constexpr UINT kAbsentID = 60000;
constexpr WCHAR kTitle[] = L"KALVO Solvane Android Watch Installer";

// What a call throws; S_OK when it returns.
template<typename Call>
HRESULT ThrownBy(Call call)
{
    try {
        call();
    } catch (const CAtlException& exception) {
        return exception;
    }
    return S_OK;
}

// A string whose characters are its own and not those of a literal.
CStringW Own(PCWSTR psz)
{
    return {psz};
}

TEST(CStringW, IsOnePointerThatPointsAtItsCharacters)
{
    static_assert(sizeof(CStringW) == sizeof(void*));
    const CStringW str(L"watch");
    PCWSTR pszInside = nullptr;
    memcpy(static_cast<void*>(&pszInside), static_cast<const void*>(&str), sizeof(pszInside));
    EXPECT_EQ(str.GetString(), pszInside);
    EXPECT_STREQ(L"watch", pszInside);
}

TEST(CStringW, IsMadeOfNothingOrOfAPlainStringUpToItsNul)
{
    for (const CStringW& str : {CStringW(), CStringW(static_cast<PCWSTR>(nullptr))}) {
        EXPECT_TRUE(str.IsEmpty());
        EXPECT_EQ(0, str.GetLength());
        ASSERT_NE(nullptr, str.GetString());
        EXPECT_STREQ(L"", str);
    }
    const CStringW str(L"wa\0tch");
    EXPECT_EQ(2, str.GetLength());
    EXPECT_STREQ(L"wa", str);
    EXPECT_FALSE(str.IsEmpty());
}

TEST(CStringW, SharesItsCharactersWithItsCopies)
{
    const CStringW str = Own(L"shared");
    const CStringW strCopy(str);
    CStringW strAssigned(L"old");
    strAssigned = str;
    EXPECT_EQ(str.GetString(), strCopy.GetString());
    EXPECT_EQ(str.GetString(), strAssigned.GetString());
}

TEST(CStringW, KeepsSharedCharactersAliveForTheLastOfTheSharers)
{
    CStringW strLast;
    {
        const CStringW str = Own(L"outlived");
        const CStringW strSecond(str);
        strLast = strSecond;
    }
    EXPECT_STREQ(L"outlived", strLast);
}

// A way of changing a string.
struct Change
{
    PCSTR pszName;
    void (*pfnChange)(CStringW& str);
    PCWSTR pszChanged;
};

constexpr Change kChanges[] = {
    {"AppendChar", [](CStringW& str) { str.AppendChar(L'2'); }, L"Solvane 2"},
    {"GetBuffer", [](CStringW& str) { str.GetBuffer()[1] = L'a'; }, L"Salvane "},
    {"Assignment", [](CStringW& str) { str = L"other"; }, L"other"},
    {"Empty", [](CStringW& str) { str.Empty(); }, L""},
    {"Format", [](CStringW& str) { str.Format(L"%d", 7); }, L"7"},
    {"LoadString", [](CStringW& str) { str.LoadStringW(IDS_APPLICATION_TITLE); }, kTitle},
    {"PartOfItself", [](CStringW& str) { str = str.GetString() + 3; }, L"vane "},
};

TEST(CStringW, LeavesItsSharersAloneHoweverItIsChanged)
{
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.pszName);
        const CStringW strOriginal = Own(L"Solvane ");
        CStringW str = strOriginal;
        change.pfnChange(str);
        EXPECT_STREQ(change.pszChanged, str);
        EXPECT_STREQ(L"Solvane ", strOriginal);
        EXPECT_NE(strOriginal.GetString(), str.GetString());
    }
}

TEST(CStringW, WritesInPlaceWhenNobodyShares)
{
    CStringW str = Own(L"alone");
    {
        const CStringW strGone(str);
    }
    const PCWSTR pszBefore = str;
    str.GetBuffer()[0] = L'A';
    EXPECT_EQ(pszBefore, str.GetString());
    EXPECT_STREQ(L"Alone", str);
}

TEST(CStringW, CountsItsSharersAcrossThreads)
{
    CStringW str = Own(L"common");
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&str] {
            for (int j = 0; j < 20000; j++) {
                CStringW strCopy(str);
                CStringW strSecond;
                strSecond = strCopy;
                strCopy.Empty();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const PCWSTR pszBefore = str;
    EXPECT_EQ(pszBefore, str.GetBuffer()) << "a count too high copies, a count too low has freed";
    EXPECT_STREQ(L"common", str);
}

TEST(CStringW, LeavesAMovedFromStringEmpty)
{
    CStringW strFrom = Own(L"moved");
    const PCWSTR pszCharacters = strFrom;
    CStringW strTo(std::move(strFrom));
    EXPECT_EQ(pszCharacters, strTo.GetString());
    EXPECT_TRUE(strFrom.IsEmpty()); // NOLINT(bugprone-use-after-move): promised
    CStringW strAssigned(L"old");
    strAssigned = std::move(strTo);
    EXPECT_EQ(pszCharacters, strAssigned.GetString());
    EXPECT_STREQ(L"moved", strAssigned);
}

TEST(CStringW, SurvivesAssignmentOfItselfAndOfAPartOfIt)
{
    CStringW str = Own(L"myself");
    CStringW& strSame = str;
    str = strSame;
    EXPECT_STREQ(L"myself", str);
    str = std::move(strSame);
    EXPECT_STREQ(L"myself", str);
    str = str.GetString();
    EXPECT_STREQ(L"myself", str);
    EXPECT_EQ(6, str.GetLength());
    str = str.GetString() + 2;
    EXPECT_STREQ(L"self", str);
}

TEST(CStringW, AppendsNuls)
{
    CStringW str(L"a");
    str.AppendChar(L'\0');
    str.AppendChar(L'b');
    EXPECT_EQ(3, str.GetLength());
    EXPECT_EQ(0, wmemcmp(L"a\0b", str, 4));
}

TEST(CStringW, GrowsFromManySmallPieces)
{
    CStringW str;
    std::wstring expected;
    int nMoves = 0;
    for (int i = 0; i < 100000; i++) {
        const auto ch = static_cast<WCHAR>(L'a' + (i % 26));
        const PCWSTR pszBefore = str;
        str.AppendChar(ch);
        expected += ch;
        nMoves += str.GetString() != pszBefore ? 1 : 0;
    }
    EXPECT_LT(nMoves, 100) << "in steps that get larger";
    EXPECT_EQ(100000, str.GetLength());
    EXPECT_EQ(expected, str.GetString());
}

TEST(CStringW, IsAssignedAPlainStringOrEmptied)
{
    CStringW str;
    str = L"port";
    EXPECT_STREQ(L"port", str);
    str = static_cast<PCWSTR>(nullptr);
    EXPECT_TRUE(str.IsEmpty());
    str = L"full";
    for (int i = 0; i < 2; i++) {
        str.Empty();
        EXPECT_TRUE(str.IsEmpty());
        EXPECT_STREQ(L"", str);
    }
}

TEST(CStringW, LeavesOtherEmptyStringsEmptyWhenOneIsWrittenTo)
{
    CStringW str;
    str.GetBuffer(3)[0] = L'x';
    str.ReleaseBufferSetLength(1);
    EXPECT_STREQ(L"x", str);
    EXPECT_STREQ(L"", CStringW());
    EXPECT_EQ(0, CStringW().GetLength());
}

TEST(CStringW, KeepsItsTextInALargerBufferOrASmallerOne)
{
    CStringW str = Own(L"text");
    const PWSTR pszBuffer = str.GetBuffer(5000);
    EXPECT_STREQ(L"text", pszBuffer);
    wmemset(pszBuffer, L'y', 5000);
    str.ReleaseBufferSetLength(5000);
    EXPECT_EQ(5000, str.GetLength());
    EXPECT_EQ(std::wstring(5000, L'y'), str.GetString());
    str = Own(L"longer");
    EXPECT_STREQ(L"longer", str.GetBuffer(1));
    const CStringW strCopy(str);
    EXPECT_STREQ(L"longer", str.GetBuffer(1)) << "also when the buffer is a new one";
    EXPECT_EQ(6, str.GetLength());
}

TEST(CStringW, TakesTheLengthItIsGivenAndEndsTheTextThere)
{
    CStringW str;
    wmemcpy(str.GetBuffer(8), L"abcdefgh", 8);
    str.ReleaseBufferSetLength(3);
    EXPECT_EQ(3, str.GetLength());
    EXPECT_STREQ(L"abc", str);
}

TEST(CStringW, RefusesLengthsThatTheBufferDoesNotHave)
{
    CStringW str = Own(L"abc");
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.ReleaseBufferSetLength(1000); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.ReleaseBufferSetLength(-1); }));
    EXPECT_STREQ(L"abc", str);
}

TEST(CStringW, RunsOutOfMemoryBeforeItsLengthOverflows)
{
    CStringW str = Own(L"kept");
    EXPECT_EQ(E_OUTOFMEMORY, ThrownBy([&] { str.GetBuffer(INT_MAX); }));
    EXPECT_STREQ(L"kept", str);
}

TEST(CStringW, FormatsNumbersTextsAndCharacters)
{
    CStringW str;
    str.Format(L"%s:%u (attempt %d of %d) %hs %c %I64d %%", L"192.168.1.100", 43210U, 1, 3, "narrow", L'w', 1LL << 40);
    EXPECT_STREQ(L"192.168.1.100:43210 (attempt 1 of 3) narrow w 1099511627776 %", str);
    str.Format(L"%hu.%hu.%hu", static_cast<WORD>(1), static_cast<WORD>(4), static_cast<WORD>(0));
    EXPECT_STREQ(L"1.4.0", str);
    str.Format(L"%08lX", static_cast<long>(0x80004005));
    EXPECT_STREQ(L"80004005", str);
    const WCHAR szBuffer[8] = L"array";
    str.Format(L"%s", szBuffer);
    EXPECT_STREQ(L"array", str);
    str.Format(L"no arguments");
    EXPECT_STREQ(L"no arguments", str);
    str.Format(L"");
    EXPECT_TRUE(str.IsEmpty());
}

TEST(CStringW, FormatsAnotherStringAsItIsOverALongerOrAShorterText)
{
    const CStringW strTitle(L"Solvane");
    CStringW str(L"a rather long text that was there before");
    str.Format(L"%s\n\n%s|%5s|", strTitle, CStringW(L"temporary"), CStringW(L"ab"));
    EXPECT_STREQ(L"Solvane\n\ntemporary|   ab|", str);
    EXPECT_EQ(25, str.GetLength());
    const CStringW strLong(std::wstring(200000, L'n').c_str());
    str.Format(L"<%s%s>", strLong, strLong);
    ASSERT_EQ(400002, str.GetLength());
    EXPECT_EQ(L"<" + std::wstring(400000, L'n') + L">", str.GetString());
}

#ifndef __ATLSTR_H__ // the platform's class does not promise it
TEST(CStringW, FormatsItself)
{
    CStringW str = Own(L"again");
    str.Format(L"%s and %s", str, str.GetString());
    EXPECT_STREQ(L"again and again", str);
}
#endif

TEST(CStringW, LoadsAStringOfTheExecutableWhole)
{
    CStringW str(L"old text");
    EXPECT_EQ(TRUE, str.LoadStringW(IDS_APPLICATION_TITLE));
    EXPECT_STREQ(kTitle, str);
    EXPECT_EQ(static_cast<int>(wcslen(kTitle)), str.GetLength());
    ASSERT_EQ(TRUE, str.LoadStringW(IDS_WIRELESS_DEBUGGING_ON_BODY));
    EXPECT_EQ(858, str.GetLength());
    EXPECT_STREQ(L"same network as your computer.", str.GetString() + 828);
}

TEST(CStringW, StaysAsItWasWhenAStringIsNotThere)
{
    CStringW str(L"kept");
    EXPECT_EQ(FALSE, str.LoadStringW(kAbsentID));
    EXPECT_EQ(FALSE, str.LoadStringW(IDS_APPLICATION_TITLE - 1)) << "a block that is there, an entry that is not";
    EXPECT_STREQ(L"kept", str);
}

} // namespace
// NOLINTEND(performance-unnecessary-copy-initialization)
