// How failures of the system are told.

#include "app/ground/ErrorReport.h"

#include "tests/kit/Test.h"

using namespace kit;

namespace {

// FormatMessageW as a test wants it: gives each time a new copy of one description, or none.
class Description
{
public:
    explicit Description(std::wstring strText)
        : m_strText(std::move(strText)), m_format([this](DWORD, const void*, DWORD, DWORD, PWSTR psz, DWORD, va_list*) {
              return Give(reinterpret_cast<PWSTR*>(psz));
          })
    {
    }

    // The system was asked for the code in the one way that suits every caller.
    void ExpectAskedForAndFreed(DWORD dwCode) const
    {
        ASSERT_EQ(m_format.Calls(), 1u);
        EXPECT_EQ(m_format.Arguments(), std::tuple(0x1300u, nullptr, dwCode, 0x0400u, kAny, 0u, nullptr));
        ExpectFreed(m_pszGiven);
    }

    // LocalFree was given this, once.
    void ExpectFreed(const void* p) const
    {
        int nTimes = 0;
        for (size_t n = 0; n < m_free.Calls(); ++n) {
            nTimes += m_free.Arg<0>(n) == p;
        }
        EXPECT_EQ(nTimes, 1);
    }

private:
    DWORD Give(PWSTR* ppsz)
    {
        unreplaced::SetLastError(4711);
        if (m_strText.empty()) {
            return 0;
        }
        const size_t cb = (m_strText.size() + 1) * sizeof(WCHAR);
        m_pszGiven = static_cast<PWSTR>(unreplaced::LocalAlloc(LMEM_FIXED, cb));
        memcpy(m_pszGiven, m_strText.c_str(), cb);
        *ppsz = m_pszGiven;
        return static_cast<DWORD>(m_strText.size());
    }

    std::wstring m_strText;
    PWSTR m_pszGiven = nullptr;
    REPLACED(FormatMessageW) m_format;
    REPLACED(LocalFree) m_free { Quietly() };
};

using ErrorReport = Test;

TEST_F(ErrorReport, LastErrorIsToldWithMethodCodeAndUntrimmedDescription)
{
    const Description description(L"Out of luck.\r\n");
    WhenBoxShows([](const Box&) { SetLastError(99); });
    SetLastError(5);
    EXPECT_EQ(ReportLastError(L"CFoo::Bar() > Baz()"), 5u);
    ExpectBox(L"CFoo::Bar() > Baz() failed with error 5: Out of luck.\r\n", L"Error");
    description.ExpectAskedForAndFreed(5);
}

TEST_F(ErrorReport, LastErrorIsToldInTheSystemsOwnWords)
{
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(ReportLastError(L"CPlatformTools::WriteZipFileResource() > CreateFile()"), 5u);
    EXPECT_TRUE(SystemDescription(5).ends_with(L"\r\n"));
    ExpectBox(L"CPlatformTools::WriteZipFileResource() > CreateFile() failed with error 5: " + SystemDescription(5),
              L"Error");
}

TEST_F(ErrorReport, ACodeWithoutDescriptionEndsAfterTheColon)
{
    const Description description(L"");
    const REPLACED(LocalAlloc) allocate;
    SetLastError(77);
    EXPECT_EQ(ReportLastError(L"M"), 77u);
    ExpectBox(L"M failed with error 77: ", L"Error");
    EXPECT_EQ(allocate.Arg<1>(), (1 + 0 + 40) * sizeof(WCHAR));
    ReportWin32Error(L"M", false, nullptr, 2);
    ExpectBox(L"M failed with error 0x00000002: \r\n", L"Win32 Error");
}

TEST_F(ErrorReport, TheTextIsAsLongAsItsPartsNeed)
{
    const Description description(std::wstring(30, L'd'));
    void* pText = nullptr;
    REPLACED(LocalAlloc) allocate([&](UINT nFlags, SIZE_T cb) { return pText = unreplaced::LocalAlloc(nFlags, cb); });
    SetLastError(5);
    ReportLastError(L"Method");
    EXPECT_EQ(TakeBox().strCaption, L"Error");
    EXPECT_EQ(allocate.Calls(), 1u);
    EXPECT_EQ(allocate.Arguments(), std::tuple(UINT(LMEM_ZEROINIT), (6 + 30 + 40) * sizeof(WCHAR)));
    description.ExpectFreed(pText);
}

TEST_F(ErrorReport, TheTextNeverPassesTheBufferThatThereIs)
{
    const Description description(L"description");
    const REPLACED(LocalSize) size(Returns(SIZE_T(20)));
    SetLastError(5);
    ReportLastError(L"CFoo::Bar()");
    ExpectBox(L"CFoo::Bar", L"Error");
}

// The code is a signed number here, and eight digits there.
TEST_F(ErrorReport, ALongDescriptionIsNeverCut)
{
    const std::wstring strLong(20000, L'w');
    const Description description(strLong);
    SetLastError(0x80000000);
    EXPECT_EQ(ReportLastError(L"M"), 0x80000000u);
    ExpectBox(L"M failed with error -2147483648: " + strLong, L"Error");
    ReportWin32Error(L"M", false, nullptr, 0xFFFFFFFF);
    ExpectBox(L"M failed with error 0xFFFFFFFF: " + strLong + L"\r\n", L"Win32 Error");
}

TEST_F(ErrorReport, LastErrorAndExitEndsTheProcessWithTheCode)
{
    const Description description(L"Gone.\r\n");
    EXPECT_EQ(ExitCodeOf([] {
                  SetLastError(126);
                  ReportLastErrorAndExit(L"CFoo::Bar() > Baz()");
              }),
              126u);
    ExpectBox(L"CFoo::Bar() > Baz() failed with error 126: Gone.\r\n", L"Error");
    description.ExpectAskedForAndFreed(126);
    EXPECT_EQ(Journal().back(), "exit 126");
}

TEST_F(ErrorReport, AFatalErrorShowsBothTextsAndEndsTheProcessWithOne)
{
    const REPLACED(FormatMessageW) format(Never());
    EXPECT_EQ(ExitCodeOf([] {
                  SetLastError(5);
                  ReportFatalError(L"CWirelessDebuggingOnPage::OnInitDialog()", L"Invalid parameter passed");
              }),
              1u);
    ExpectBox(L"CWirelessDebuggingOnPage::OnInitDialog()\nInvalid parameter passed", L"Error");
}

struct Trimming
{
    PCSTR pszName;
    PCWSTR pszDescription;
    PCWSTR pszShown;
};

class ComErrorDescription : public ErrorReport, public testing::WithParamInterface<Trimming>
{
};

TEST_P(ComErrorDescription, IsShownTrimmedUnderTheMethod)
{
    const Description description(GetParam().pszDescription);
    EXPECT_EQ(ExitCodeOf([] { ReportComErrorAndExit(E_INVALIDARG, L"CFoo::Bar() > Baz()"); }), 0x80070057u);
    ExpectBox(GetParam().pszShown, L"CFoo::Bar() > Baz()");
    description.ExpectAskedForAndFreed(0x80070057);
}

constexpr Trimming kTrimmings[] = {
    {"StopAndLineBreak", L"The parameter is incorrect.\r\n", L"The parameter is incorrect"},
    {"NoStopAtAll", L"No stop at all \t\r\n", L"No stop at all"},
    {"OnlyOneStopGoes", L"Only one stop goes..\r\n", L"Only one stop goes."},
    {"NothingAfterTheStop", L"Nothing after the stop .", L"Nothing after the stop "},
    {"OnlyTheLastStop", L"One. Two.\n", L"One. Two"},
    {"Plain", L"Plain", L"Plain"},
    {"AnotherMark", L"Why?\r\n", L"Why?"},
    {"AStopAlone", L".", L""},
    {"OneLetter", L"x", L"x"},
    {"WideBlanks", L"Wide blanks.\u2003\u3000\r\n", L"Wide blanks"},
    {"LineAndParagraphEnd", L"A line's end\u2028 \u2029", L"A line's end"},
    {"NoBlank", L"Not blank\u200B\r\n", L"Not blank\u200B"},
    {"NothingButBlanks", L" \r\n", L""},
};
INSTANTIATE_TEST_SUITE_P(Trimming, ComErrorDescription, testing::ValuesIn(kTrimmings), kByName);

TEST_F(ErrorReport, AComErrorIsToldInTheSystemsOwnWords)
{
    EXPECT_EQ(ExitCodeOf([] { ReportComErrorAndExit(E_OUTOFMEMORY, L"M"); }), 0x8007000Eu);
    std::wstring strDescription = SystemDescription(0x8007000E);
    strDescription.erase(strDescription.find_last_not_of(L"\r\n .") + 1);
    EXPECT_FALSE(strDescription.empty());
    ExpectBox(strDescription, L"M");
}

TEST_F(ErrorReport, AComErrorWithoutDescriptionShowsTheSignedCode)
{
    const Description description(L"");
    EXPECT_EQ(ExitCodeOf([] { ReportComErrorAndExit(E_INVALIDARG, L"M"); }), 0x80070057u);
    ExpectBox(L"Unknown error: -2147024809", L"COM Error");
    EXPECT_EQ(ExitCodeOf([] { ReportComErrorAndExit(13, L"M"); }), 13u);
    ExpectBox(L"Unknown error: 13", L"COM Error");
}

TEST_F(ErrorReport, AWin32ErrorShowsTheCodeInEightCapitalHexadecimalDigitsAndReturns)
{
    const Description description(L"Broken.\r\n");
    const HWND hwndPage = reinterpret_cast<HWND>(0x5150);
    EXPECT_EQ(ExitCodeOf([=] { ReportWin32Error(L"CFoo::Bar() > Baz()", false, hwndPage, 0xABCDE); }), std::nullopt);
    ExpectBox(hwndPage, L"CFoo::Bar() > Baz() failed with error 0x000ABCDE: Broken.\r\n\r\n", L"Win32 Error");
    description.ExpectAskedForAndFreed(0xABCDE);
}

TEST_F(ErrorReport, AWin32ErrorEndsTheProcessWithTheCodeWhenAskedTo)
{
    const Description description(L"Broken.\r\n");
    EXPECT_EQ(ExitCodeOf([] { ReportWin32Error(L"M", true, nullptr, 13); }), 13u);
    ExpectBox(L"M failed with error 0x0000000D: Broken.\r\n\r\n", L"Win32 Error");
    description.ExpectAskedForAndFreed(13);
}

TEST_F(ErrorReport, AWin32ErrorOfNoMethodIsThatOfAnUnknownOne)
{
    const Description description(L"x");
    const REPLACED(LocalAlloc) allocate;
    ReportWin32Error(nullptr, false, nullptr, 2);
    ExpectBox(L"Unknown Method failed with error 0x00000002: x\r\n", L"Win32 Error");
    EXPECT_EQ(allocate.Arg<1>(), (14 + 1 + 40) * sizeof(WCHAR));
}

} // namespace
