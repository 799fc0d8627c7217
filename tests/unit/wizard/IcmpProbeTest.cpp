// The ICMP probe of the working pages.

#include "net/IcmpEcho.h"

#include "tests/unit/wizard/AnsweringWatch.h"
#include "tests/unit/wizard/ProbeTest.h"

#include <malloc.h>

using namespace kit;

namespace {

constexpr PCWSTR kNoNetwork = L"It looks like your computer does not have a network connection.\n\n"
                              L"Check your Wi-Fi settings or make certain your Ethernet cable is plugged in.";

LRESULT Ping(PCWSTR pszAddress = L"192.168.1.100")
{
    const SOCKADDR_IN address = MakeAddress(pszAddress, 43210);
    return CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping(kPage, &address, kStatusLine);
}

Lines Pinging(int nAttempts, const Lines& behind = {})
{
    return Attempts("Pinging 192.168.1.100", nAttempts, 6, behind);
}

std::wstring BoxOfError(DWORD dwError, const std::wstring& strHexadecimal)
{
    return L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest() failed with error " +
           strHexadecimal + L": " + SystemDescription(dwError) + L"\r\n";
}

class IcmpProbe : public ProbeTest
{
protected:
    // With these outcomes of its requests the probe has this result and writes these texts.
    void Expect(LRESULT nResult, const Lines& texts, std::vector<Echo> echoes,
                std::source_location where = std::source_location::current())
    {
        const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "the probe expected here");
        m_watch.m_echoes = std::move(echoes);
        m_texts.clear();
        Journal().clear();
        EXPECT_EQ(Ping(), nResult);
        EXPECT_EQ(m_texts, texts);
        EXPECT_TRUE(Sleeps().empty());
        EXPECT_EQ(Journal().front(), "IcmpCreateFile");
        EXPECT_EQ(Journal().back(), "IcmpCloseHandle");
        EXPECT_EQ(JournalOf({"IcmpCreateFile", "IcmpCloseHandle"}).size(), 2u);
        EXPECT_EQ(m_close.Arg<0>(m_close.Calls() - 1), kIcmp);
    }

    // It gives up after so many requests, with this box after the status.
    void ExpectUnreachable(int nAttempts, std::vector<Echo> echoes, PCWSTR pszText, PCWSTR pszCaption,
                           std::source_location where = std::source_location::current())
    {
        Expect(-1, Pinging(nAttempts, {"Unreachable"}), std::move(echoes), where);
        ExpectBox(kPage, pszText, pszCaption, where);
        EXPECT_EQ(*(Journal().end() - 3), "status \"Unreachable\"");
        EXPECT_EQ(*(Journal().end() - 2), "box \"" + Narrow(pszText) + '"');
    }

    AnsweringWatch m_watch;
    REPLACED(IcmpCreateFile) m_create { Maybe() };
    REPLACED(IcmpSendEcho2) m_send { Maybe() };
    REPLACED(IcmpCloseHandle) m_close { Maybe() };
};

TEST_F(IcmpProbe, SucceedsWithTheFirstAnswer)
{
    Expect(0, Pinging(1), {kAnswer});
    EXPECT_EQ(Journal(), (Lines{"IcmpCreateFile", "status \"Pinging 192.168.1.100 (1 of 6)\"", "IcmpSendEcho2",
                                "ping 192.168.1.100", "IcmpCloseHandle"}));
}

TEST_F(IcmpProbe, GivesUpAfterSixSilences)
{
    ExpectUnreachable(6, {kSilence}, kNotFound, L"Invalid IP address");
    ASSERT_EQ(m_send.Calls(), 6u);
    for (size_t n = 0; n < 6; ++n) {
        // The payload is the watch's to look at.
        EXPECT_EQ(m_send.Arguments(n), std::tuple(kIcmp, nullptr, nullptr, nullptr, 0x6401A8C0u, kAny, kAny, nullptr,
                                                  m_send.Arg<8>(0), 92u, 1000u));
    }
}

TEST_F(IcmpProbe, SucceedsWithTheLastAnswer)
{
    Expect(0, Pinging(6), {kSilence, kSilence, kSilence, kSilence, kSilence, kAnswer});
}

TEST_F(IcmpProbe, TakesNothingButAGoodReplyOfTheAddressItselfForAnAnswer)
{
    Expect(0, Pinging(2), {{.pszFrom = L"192.168.1.1"}, kAnswer});
    Expect(0, Pinging(4),
           {{.nStatus = IP_DEST_HOST_UNREACHABLE}, {.nStatus = 1}, {.nStatus = IP_REQ_TIMED_OUT}, kAnswer});
    Expect(0, Pinging(1), {{.nReplies = 2}, kSilence}); // there may be more
}

TEST_F(IcmpProbe, IgnoresTheLastErrorOfAReply)
{
    // A router's unreachable message, with a reason left behind: still one attempt of six.
    ExpectUnreachable(6, {{1, L"192.168.1.1", IP_DEST_HOST_UNREACHABLE, 1232}}, kNotFound, L"Invalid IP address");
}

TEST_F(IcmpProbe, TellsAtOnceThatThereIsNoNetwork)
{
    for (const DWORD dwError : {1231, 1232, 1233, 1234}) {
        SCOPED_TRACE(dwError);
        ExpectUnreachable(1, {EchoError(dwError)}, kNoNetwork, L"No Network Connection");
        ExpectUnreachable(3, {kSilence, kSilence, EchoError(dwError)}, kNoNetwork, L"No Network Connection");
    }
}

TEST_F(IcmpProbe, TellsAnyOtherErrorWithItsCodeAndKeepsThePage)
{
    const std::pair<DWORD, PCWSTR> errors[] = {{11001, L"0x00002AF9"}, {6, L"0x00000006"},     {1230, L"0x000004CE"},
                                               {1235, L"0x000004D3"},  {11009, L"0x00002B01"}, {11011, L"0x00002B03"},
                                               {11003, L"0x00002AFB"}, {0, L"0x00000000"}};
    for (const auto& [dwError, pszHexadecimal] : errors) {
        SCOPED_TRACE(dwError);
        Expect(-1, Pinging(2), {kSilence, EchoError(dwError)});
        ExpectBox(kPage, BoxOfError(dwError, pszHexadecimal), L"Win32 Error");
    }
}

TEST_F(IcmpProbe, WithoutAnIcmpHandleFailsWithItsFirstRequestAndClosesNothing)
{
    const REPLACED(IcmpCreateFile) create(Returns(INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED));
    m_watch.m_echoes = {EchoError(ERROR_INVALID_HANDLE)};
    EXPECT_EQ(Ping(), -1);
    EXPECT_EQ(m_send.Arg<0>(), INVALID_HANDLE_VALUE);
    ExpectBox(kPage, BoxOfError(6, L"0x00000006"), L"Win32 Error");
    EXPECT_EQ(m_texts, Pinging(1));
    EXPECT_EQ(m_close.Calls(), 0u);
}

TEST_F(IcmpProbe, WritesAnEmptyAddressWhenThereIsNoTextForIt)
{
    const REPLACED(InetNtopW) text(Returns(PCWSTR(nullptr)));
    EXPECT_EQ(Ping(), 0);
    EXPECT_EQ(m_texts, Lines{"Pinging  (1 of 6)"});
}

// The C runtime's own heap knows which of its blocks are in use.
bool IsAllocated(const void* p)
{
    return HeapValidate(reinterpret_cast<HANDLE>(_get_heap_handle()), 0, p) != FALSE;
}

TEST_F(IcmpProbe, FreesTheReplyBeforeItClosesTheHandle)
{
    const void* pReply = nullptr;
    const REPLACED(IcmpSendEcho2)
        send([&](auto, auto, auto, auto, auto, auto, auto, auto, void* p, auto, auto) -> DWORD {
            pReply = p;
            EXPECT_TRUE(IsAllocated(p));
            return 0;
        });
    const REPLACED(IcmpCloseHandle) close([&](HANDLE) {
        EXPECT_FALSE(IsAllocated(pReply));
        return TRUE;
    });
    CIcmpEcho().SendEchoRequest(0);
}

TEST_F(IcmpProbe, KeepsTheReasonOfAFailedRequestInTheLastError)
{
    m_watch.m_echoes = {EchoError(11005)};
    CIcmpEcho echo;
    EXPECT_EQ(echo.SendEchoRequest(MakeAddress(L"192.168.1.100", 0).sin_addr.s_addr), 0u);
    EXPECT_EQ(GetLastError(), 11005u);
}

class IcmpProbeForReal : public ProbeTest
{
};

TEST_F(IcmpProbeForReal, FindsThisComputer)
{
    EXPECT_EQ(Ping(L"127.0.0.1"), 0);
    EXPECT_EQ(m_texts, Lines{"Pinging 127.0.0.1 (1 of 6)"});
}

} // namespace
