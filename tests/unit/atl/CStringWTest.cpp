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

void FormatWithArguments(CStringW& str, PCWSTR pszFormat, ...) // NOLINT(cert-dcl50-cpp): it is what makes a va_list
{
    va_list args;
    va_start(args, pszFormat);
    str.FormatV(pszFormat, args);
    va_end(args);
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

TEST(CStringW, IsEmptyToBeginWith)
{
    const CStringW str;
    EXPECT_TRUE(str.IsEmpty());
    EXPECT_EQ(0, str.GetLength());
    ASSERT_NE(nullptr, str.GetString());
    EXPECT_STREQ(L"", str);
}

TEST(CStringW, TakesAPlainStringUpToItsNul)
{
    const CStringW str(L"wa\0tch");
    EXPECT_EQ(2, str.GetLength());
    EXPECT_STREQ(L"wa", str);
    EXPECT_FALSE(str.IsEmpty());
}

TEST(CStringW, TakesANullPointerForAnEmptyString)
{
    const CStringW str(static_cast<PCWSTR>(nullptr));
    EXPECT_TRUE(str.IsEmpty());
    EXPECT_STREQ(L"", str);
    const CStringW strOfNone(nullptr, 0);
    EXPECT_TRUE(strOfNone.IsEmpty());
}

TEST(CStringW, TakesExactlyTheUnitsOfACountNulsIncluded)
{
    const CStringW str(L"ab\0cdef", 5);
    EXPECT_EQ(5, str.GetLength());
    EXPECT_EQ(0, wmemcmp(L"ab\0cd", str, 6)) << "the terminating NUL is there";
}

TEST(CStringW, RefusesACountWithoutCharactersAndANegativeOne)
{
    EXPECT_EQ(E_INVALIDARG, ThrownBy([] { CStringW(nullptr, 3); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([] { CStringW(L"abc", -1); }));
    CStringW str(L"kept");
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.SetString(nullptr, 1); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.SetString(L"x", -5); }));
    EXPECT_STREQ(L"kept", str);
}

TEST(CStringW, RepeatsACharacter)
{
    EXPECT_STREQ(L"xxx", CStringW(L'x', 3));
    EXPECT_STREQ(L"x", CStringW(L'x'));
    EXPECT_TRUE(CStringW(L'x', 0).IsEmpty());
    EXPECT_TRUE(CStringW(L'x', -1).IsEmpty());
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

// Each way of changing a string, tried on one that shares its characters.
class ChangedSharer : public testing::Test
{
protected:
    CStringW m_strOriginal = Own(L"Solvane ");
    CStringW m_str = m_strOriginal;

    void ExpectChangedAlone(PCWSTR pszChanged)
    {
        EXPECT_STREQ(pszChanged, m_str);
        EXPECT_STREQ(L"Solvane ", m_strOriginal);
        EXPECT_NE(m_strOriginal.GetString(), m_str.GetString());
    }
};

TEST_F(ChangedSharer, LeavesTheOthersAloneBySetAt)
{
    m_str.SetAt(0, L's');
    ExpectChangedAlone(L"solvane ");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByAppend)
{
    m_str += L"client";
    ExpectChangedAlone(L"Solvane client");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByGetBuffer)
{
    m_str.GetBuffer()[1] = L'a';
    ExpectChangedAlone(L"Salvane ");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneBySetString)
{
    m_str.SetString(L"other");
    ExpectChangedAlone(L"other");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByEmpty)
{
    m_str.Empty();
    ExpectChangedAlone(L"");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByTruncate)
{
    m_str.Truncate(3);
    ExpectChangedAlone(L"Sol");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByTrimRight)
{
    m_str.TrimRight();
    ExpectChangedAlone(L"Solvane");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByFormat)
{
    m_str.Format(L"%d", 7);
    ExpectChangedAlone(L"7");
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByLoadString)
{
    ASSERT_TRUE(m_str.LoadStringW(IDS_APPLICATION_TITLE));
    ExpectChangedAlone(kTitle);
}

TEST_F(ChangedSharer, LeavesTheOthersAloneByPreallocate)
{
    m_str.Preallocate(1000);
    EXPECT_STREQ(L"Solvane ", m_str);
    EXPECT_NE(m_strOriginal.GetString(), m_str.GetString());
}

TEST(CStringW, WritesInPlaceWhenNobodyShares)
{
    CStringW str = Own(L"alone");
    {
        const CStringW strGone(str);
    }
    const PCWSTR pszBefore = str;
    str.SetAt(0, L'A');
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

TEST(CStringW, SurvivesAssignmentToItself)
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
}

TEST(CStringW, TakesAPartOfItself)
{
    CStringW str = Own(L"platform-tools");
    str = str.GetString() + 9;
    EXPECT_STREQ(L"tools", str);
    str.SetString(str.GetString() + 1, 3);
    EXPECT_STREQ(L"ool", str);
}

TEST(CStringW, TakesAPartOfItselfWhileItShares)
{
    CStringW str = Own(L"platform-tools");
    const CStringW strCopy(str);
    str = str.GetString() + 9;
    EXPECT_STREQ(L"tools", str);
    EXPECT_STREQ(L"platform-tools", strCopy);
}

TEST(CStringW, IsAssignedAPlainStringOrACharacter)
{
    CStringW str;
    str = L"port";
    EXPECT_STREQ(L"port", str);
    str = L'p';
    EXPECT_STREQ(L"p", str);
    str = static_cast<PCWSTR>(nullptr);
    EXPECT_TRUE(str.IsEmpty());
}

TEST(CStringW, AppendsStringsPartsAndCharacters)
{
    CStringW str(L"a");
    str += CStringW(L"b");
    str += L"c";
    str += L'd';
    str.Append(L"efgh", 2);
    str.AppendChar(L'!');
    EXPECT_STREQ(L"abcdef!", str);
    EXPECT_EQ(7, str.GetLength());
}

TEST(CStringW, AppendsNothingForANullPointerOrAnEmptyString)
{
    CStringW str = Own(L"same");
    const CStringW strCopy(str);
    str += static_cast<PCWSTR>(nullptr);
    str += L"";
    str += CStringW();
    str.Append(nullptr, 0);
    EXPECT_STREQ(L"same", str);
    EXPECT_EQ(strCopy.GetString(), str.GetString()) << "nothing changed, so nothing is copied";
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.Append(nullptr, 2); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.Append(L"x", -1); }));
}

TEST(CStringW, AppendsItselfAndPartsOfItself)
{
    CStringW str = Own(L"abc");
    str += str;
    EXPECT_STREQ(L"abcabc", str);
    str.Append(str.GetString() + 4, 2);
    EXPECT_STREQ(L"abcabcbc", str);
}

TEST(CStringW, AppendsNuls)
{
    CStringW str(L"a");
    str.AppendChar(L'\0');
    str += L"b";
    EXPECT_EQ(3, str.GetLength());
    EXPECT_EQ(0, wmemcmp(L"a\0b", str, 4));
}

TEST(CStringW, GrowsFromManySmallPieces)
{
    CStringW str;
    std::wstring expected;
    for (int i = 0; i < 100000; i++) {
        const auto ch = static_cast<WCHAR>(L'a' + (i % 26));
        str.AppendChar(ch);
        expected += ch;
    }
    EXPECT_EQ(100000, str.GetLength());
    EXPECT_EQ(expected, str.GetString());
}

TEST(CStringW, GrowsInStepsThatGetLarger)
{
    CStringW str;
    int nMoves = 0;
    int nAllocLength = str.GetAllocLength();
    for (int i = 0; i < 100000; i++) {
        str.AppendChar(L'x');
        if (str.GetAllocLength() != nAllocLength) {
            nAllocLength = str.GetAllocLength();
            nMoves++;
        }
    }
    EXPECT_LT(nMoves, 100);
}

TEST(CStringW, ConcatenatesIntoANewString)
{
    const CStringW str(L"adb");
    EXPECT_STREQ(L"adb.exe", str + L".exe");
    EXPECT_STREQ(L"tools\\adb", L"tools\\" + str);
    EXPECT_STREQ(L"adbadb", str + str);
    EXPECT_STREQ(L"adb!", str + L'!');
    EXPECT_STREQ(L"!adb", L'!' + str);
    EXPECT_STREQ(L"adb", str);
}

TEST(CStringW, ReadsAUnitAndTheTerminatingNul)
{
    const CStringW str(L"xyz");
    EXPECT_EQ(L'x', str.GetAt(0));
    EXPECT_EQ(L'z', str[2]);
    EXPECT_EQ(L'\0', str[3]);
    EXPECT_EQ(L'\0', CStringW()[0]);
}

TEST(CStringW, RefusesPositionsOutsideTheString)
{
    CStringW str(L"xyz");
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { (void)str.GetAt(4); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { (void)str[-1]; }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.SetAt(3, L'!'); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.SetAt(-1, L'!'); }));
    EXPECT_STREQ(L"xyz", str);
}

TEST(CStringW, EmptiesItself)
{
    CStringW str = Own(L"full");
    str.Empty();
    EXPECT_TRUE(str.IsEmpty());
    EXPECT_STREQ(L"", str);
    str.Empty();
    EXPECT_TRUE(str.IsEmpty());
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

TEST(CStringW, KeepsItsTextInALargerBuffer)
{
    CStringW str = Own(L"text");
    const PWSTR pszBuffer = str.GetBuffer(5000);
    EXPECT_STREQ(L"text", pszBuffer);
    wmemset(pszBuffer, L'y', 5000);
    str.ReleaseBufferSetLength(5000);
    EXPECT_EQ(5000, str.GetLength());
    EXPECT_EQ(std::wstring(5000, L'y'), str.GetString());
}

TEST(CStringW, KeepsItsTextWhenTheBufferAskedForIsSmaller)
{
    CStringW str = Own(L"longer");
    str.GetBuffer(1);
    str.ReleaseBuffer();
    EXPECT_STREQ(L"longer", str);
    const CStringW strCopy(str);
    str.GetBuffer(1);
    str.ReleaseBuffer();
    EXPECT_STREQ(L"longer", str) << "also when the buffer is a new one";
}

TEST(CStringW, TakesTheLengthOfWhatWasWrittenUpToTheNul)
{
    CStringW str;
    wcscpy(str.GetBuffer(MAX_PATH), L"C:\\tools");
    str.ReleaseBuffer();
    EXPECT_EQ(8, str.GetLength());
    EXPECT_STREQ(L"C:\\tools", str);
}

TEST(CStringW, TakesTheWholeBufferWhenNoNulWasWritten)
{
    CStringW str;
    const PWSTR pszBuffer = str.GetBuffer(4);
    const int nCapacity = str.GetAllocLength();
    wmemset(pszBuffer, L'z', static_cast<size_t>(nCapacity) + 1);
    str.ReleaseBuffer();
    EXPECT_EQ(nCapacity, str.GetLength());
    EXPECT_EQ(std::wstring(static_cast<size_t>(nCapacity), L'z'), str.GetString());
}

TEST(CStringW, TakesTheLengthItIsGivenAndEndsTheTextThere)
{
    CStringW str;
    wmemcpy(str.GetBuffer(8), L"abcdefgh", 8);
    str.ReleaseBufferSetLength(3);
    EXPECT_EQ(3, str.GetLength());
    EXPECT_STREQ(L"abc", str);
    wmemcpy(str.GetBuffer(8), L"12345678", 8);
    str.ReleaseBuffer(5);
    EXPECT_STREQ(L"12345", str);
}

TEST(CStringW, HasTheLengthAskedForAtOnceInAFixedBuffer)
{
    CStringW str = Own(L"abcdef");
    PWSTR pszBuffer = str.GetBufferSetLength(2);
    EXPECT_EQ(2, str.GetLength());
    EXPECT_STREQ(L"ab", pszBuffer);
    pszBuffer = str.GetBufferSetLength(9);
    EXPECT_EQ(9, str.GetLength());
    EXPECT_EQ(L'\0', pszBuffer[9]);
}

TEST(CStringW, RefusesLengthsThatTheBufferDoesNotHave)
{
    CStringW str = Own(L"abc");
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.ReleaseBufferSetLength(str.GetAllocLength() + 1); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.ReleaseBuffer(-2); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.GetBuffer(-1); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.GetBufferSetLength(-1); }));
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.Preallocate(-1); }));
    EXPECT_STREQ(L"abc", str);
}

TEST(CStringW, DoesNotMoveWithinWhatWasPreallocated)
{
    CStringW str;
    str.Preallocate(100);
    const PCWSTR pszBefore = str;
    for (int i = 0; i < 100; i++) {
        str.AppendChar(L'x');
    }
    EXPECT_EQ(pszBefore, str.GetString());
    EXPECT_EQ(100, str.GetLength());
}

TEST(CStringW, RunsOutOfMemoryBeforeItsLengthOverflows)
{
    CStringW str = Own(L"kept");
    EXPECT_EQ(E_OUTOFMEMORY, ThrownBy([&] { str.Preallocate(INT_MAX); }));
    EXPECT_EQ(E_OUTOFMEMORY, ThrownBy([&] { str.Append(L"x", INT_MAX); }));
    EXPECT_STREQ(L"kept", str);
}

TEST(CStringW, IsTruncatedOnlyToLess)
{
    CStringW str(L"truncate");
    str.Truncate(100);
    EXPECT_STREQ(L"truncate", str);
    str.Truncate(5);
    EXPECT_STREQ(L"trunc", str);
    str.Truncate(0);
    EXPECT_TRUE(str.IsEmpty());
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

TEST(CStringW, FormatsAnotherStringAsItIs)
{
    const CStringW strTitle(L"Solvane");
    CStringW str;
    str.Format(L"%s\n\n%s|%5s|", strTitle, CStringW(L"temporary"), CStringW(L"ab"));
    EXPECT_STREQ(L"Solvane\n\ntemporary|   ab|", str);
}

TEST(CStringW, FormatsTextsOfAnyLength)
{
    const CStringW strLong(L'n', 200000);
    CStringW str;
    str.Format(L"<%s%s>", strLong, strLong);
    ASSERT_EQ(400002, str.GetLength());
    EXPECT_EQ(L"<" + std::wstring(400000, L'n') + L">", str.GetString());
}

TEST(CStringW, FormatsOverAnOldTextWhetherLongerOrShorter)
{
    CStringW str(L"a rather long text that was there before");
    str.Format(L"%d", 1);
    EXPECT_STREQ(L"1", str);
    EXPECT_EQ(1, str.GetLength());
    str.Format(L"%s", L"and now another long text");
    EXPECT_STREQ(L"and now another long text", str);
}

TEST(CStringW, RefusesToFormatANullPointer)
{
    CStringW str(L"kept");
    EXPECT_EQ(E_INVALIDARG, ThrownBy([&] { str.Format(static_cast<PCWSTR>(nullptr)); }));
    EXPECT_STREQ(L"kept", str);
}

#ifndef __ATLSTR_H__ // the platform's class promises neither
TEST(CStringW, FormatsItself)
{
    CStringW str = Own(L"again");
    str.Format(L"%s and %s", str, str.GetString());
    EXPECT_STREQ(L"again and again", str);
    str = L"%d%%";
    str.Format(str, 5);
    EXPECT_STREQ(L"5%", str);
}
#endif

TEST(CStringW, FormatsAnArgumentList)
{
    CStringW str;
    FormatWithArguments(str, L"%s %d", L"port", 5555);
    EXPECT_STREQ(L"port 5555", str);
}

TEST(CStringW, FormatsAtItsEnd)
{
    CStringW str(L"Status");
    str.AppendFormat(L": %s%d", L"attempt ", 2);
    EXPECT_STREQ(L"Status: attempt 2", str);
}

TEST(CStringW, FormatsWithAFormatFromTheStringTable)
{
    CStringW str;
    str.Format(static_cast<UINT>(IDS_STATUS_CONNECTING), CStringW(L"192.168.1.100"), 43210);
    EXPECT_STREQ(L"Status: connecting to watch at IP address 192.168.1.100 using port 43210", str);
}

TEST(CStringW, FailsToFormatWithAFormatThatIsNotInTheStringTable)
{
    CStringW str(L"kept");
    EXPECT_EQ(E_FAIL, ThrownBy([&] { str.Format(kAbsentID, 1); }));
    EXPECT_STREQ(L"kept", str);
}

TEST(CStringW, LoadsAStringOfTheExecutable)
{
    CStringW str(L"old text");
    EXPECT_EQ(TRUE, str.LoadStringW(IDS_APPLICATION_TITLE));
    EXPECT_STREQ(kTitle, str);
    EXPECT_EQ(static_cast<int>(wcslen(kTitle)), str.GetLength());
}

TEST(CStringW, LoadsALongStringWhole)
{
    CStringW str;
    ASSERT_EQ(TRUE, str.LoadStringW(IDS_WIRELESS_DEBUGGING_ON_BODY));
    EXPECT_EQ(858, str.GetLength());
    EXPECT_STREQ(L"same network as your computer.", str.Right(30));
}

TEST(CStringW, LoadsAStringOfAGivenModule)
{
    CStringW str;
    EXPECT_EQ(TRUE, str.LoadStringW(GetModuleHandleW(nullptr), IDS_APPLICATION_TITLE));
    EXPECT_STREQ(kTitle, str);
    str = L"kept";
    EXPECT_EQ(FALSE, str.LoadStringW(GetModuleHandleW(L"ntdll.dll"), IDS_APPLICATION_TITLE));
    EXPECT_STREQ(L"kept", str);
}

TEST(CStringW, StaysAsItWasWhenAStringIsNotThere)
{
    CStringW str(L"kept");
    EXPECT_EQ(FALSE, str.LoadStringW(kAbsentID));
    EXPECT_STREQ(L"kept", str);
    EXPECT_EQ(FALSE, str.LoadStringW(IDS_APPLICATION_TITLE - 1)) << "a block that is there, an entry that is not";
    EXPECT_STREQ(L"kept", str);
}

TEST(CStringW, ComparesByTheValuesOfItsUnits)
{
    const CStringW str(L"mm");
    EXPECT_EQ(0, str.Compare(L"mm"));
    EXPECT_LT(str.Compare(L"mn"), 0);
    EXPECT_GT(str.Compare(L"m"), 0);
    EXPECT_GT(str.Compare(L"MM"), 0);
    EXPECT_EQ(0, str.CompareNoCase(L"Mm"));
    EXPECT_LT(str.CompareNoCase(L"MN"), 0);
    EXPECT_EQ(E_FAIL, ThrownBy([&] { (void)str.Compare(nullptr); }));
    EXPECT_EQ(E_FAIL, ThrownBy([&] { (void)str.CompareNoCase(nullptr); }));
}

TEST(CStringW, HasTheComparisonOperators)
{
    const CStringW strA(L"a");
    const CStringW strB(L"b");
    EXPECT_TRUE(strA == CStringW(L"a"));
    EXPECT_TRUE(strA == L"a");
    EXPECT_TRUE(L"a" == strA);
    EXPECT_TRUE(strA != strB);
    EXPECT_TRUE(strA != L"b");
    EXPECT_FALSE(L"b" == strA);
    EXPECT_TRUE(strA < strB);
    EXPECT_TRUE(strB > L"a");
    EXPECT_TRUE(L"a" <= strA);
    EXPECT_TRUE(strB >= strA);
    EXPECT_FALSE(strB < strA);
}

TEST(CStringW, GivesItsParts)
{
    const CStringW str(L"192.168.1.100");
    EXPECT_STREQ(L"192", str.Left(3));
    EXPECT_STREQ(L"100", str.Right(3));
    EXPECT_STREQ(L"168", str.Mid(4, 3));
    EXPECT_STREQ(L"1.100", str.Mid(8));
    EXPECT_STREQ(L"192.168.1.100", str);
}

TEST(CStringW, CutsPartsDownToWhatThereIs)
{
    const CStringW str(L"abc");
    EXPECT_STREQ(L"abc", str.Left(10));
    EXPECT_STREQ(L"abc", str.Right(10));
    EXPECT_STREQ(L"c", str.Mid(2, INT_MAX));
    EXPECT_STREQ(L"", str.Mid(3));
    EXPECT_STREQ(L"", str.Mid(7, 2));
    EXPECT_STREQ(L"a", str.Mid(-5, 1));
    EXPECT_STREQ(L"", str.Left(-1));
    EXPECT_STREQ(L"", str.Right(-1));
    EXPECT_STREQ(L"", str.Mid(1, -1));
    EXPECT_STREQ(L"", CStringW().Mid(0, 1));
}

TEST(CStringW, SharesItsCharactersWithThePartThatIsAllOfIt)
{
    const CStringW str = Own(L"whole");
    EXPECT_EQ(str.GetString(), str.Mid(0).GetString());
    EXPECT_EQ(str.GetString(), str.Left(5).GetString());
    EXPECT_EQ(str.GetString(), str.Right(9).GetString());
}

TEST(CStringW, FindsTextsAndCharacters)
{
    const CStringW str(L"a.b.c");
    EXPECT_EQ(1, str.Find(L"."));
    EXPECT_EQ(3, str.Find(L".", 2));
    EXPECT_EQ(2, str.Find(L"b.c"));
    EXPECT_EQ(1, str.Find(L'.'));
    EXPECT_EQ(3, str.Find(L'.', 2));
    EXPECT_EQ(3, str.ReverseFind(L'.'));
    EXPECT_EQ(0, str.ReverseFind(L'a'));
}

TEST(CStringW, FindsNothingWhereNothingIs)
{
    const CStringW str(L"a.b");
    EXPECT_EQ(-1, str.Find(L"x"));
    EXPECT_EQ(-1, str.Find(L'x'));
    EXPECT_EQ(-1, str.ReverseFind(L'x'));
    EXPECT_EQ(-1, str.Find(static_cast<PCWSTR>(nullptr)));
    EXPECT_EQ(-1, str.Find(L"a", -1));
    EXPECT_EQ(-1, str.Find(L"a", 4));
    EXPECT_EQ(-1, str.Find(L'b', 3));
    EXPECT_EQ(-1, str.Find(L'a', -1));
}

TEST(CStringW, TrimsItsEnd)
{
    EXPECT_STREQ(L" text", CStringW(L" text \t\r\n").TrimRight());
    EXPECT_STREQ(L"C:", CStringW(L"C:\\\\").TrimRight(L'\\'));
    EXPECT_STREQ(L"text", CStringW(L"text.,.").TrimRight(L",."));
    EXPECT_STREQ(L"text ", CStringW(L"text ").TrimRight(L""));
    EXPECT_STREQ(L"", CStringW(L" \n ").TrimRight());
    EXPECT_STREQ(L"", CStringW().TrimRight());
}

TEST(CStringW, IsNotCopiedWhenThereIsNothingToTrim)
{
    CStringW str = Own(L"tidy");
    const CStringW strCopy(str);
    str.TrimRight();
    EXPECT_EQ(strCopy.GetString(), str.GetString());
}

} // namespace
// NOLINTEND(performance-unnecessary-copy-initialization)
