// The ICMP probe of the working pages.

#include "net/IcmpEcho.h"
#include "wizard/WirelessDebuggingOnPage.h"

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"
#include "tests/unit/wizard/StatusLine.h"

#include <cstring>
#include <malloc.h>

using namespace kit;

namespace {

const HWND kPage = reinterpret_cast<HWND>(0x9A6E);
const HANDLE kIcmp = reinterpret_cast<HANDLE>(0x1C39);

constexpr PCWSTR kNotFound =
    L"Did not find a watch at the IP address you entered.\n\n"
    L"Please verify your workstation and watch are on the same network. Also verify you entered the correct watch IP "
    L"address.\n\n"
    L"If you entered the correct IP address then \n"
    L"Steps to restart installation:\n"
    L"1. Close this installer program.\n"
    L"2. Power the watch off and then turn it on again.\n"
    L"3. Run the installer program again.\n";

constexpr PCWSTR kNoNetwork = L"It looks like your computer does not have a network connection.\n\n"
                              L"Check your Wi-Fi settings or make certain your Ethernet cable is plugged in.";

std::wstring SystemDescription(DWORD dwCode)
{
    WCHAR szText[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText, 512,
                   nullptr);
    return szText;
}

// What one echo request comes to: a number of replies and the first of them, or none and an error.
struct Outcome
{
    DWORD nReplies;
    PCWSTR pszFrom;
    ULONG nStatus;
    DWORD dwError;
};

constexpr Outcome Reply(PCWSTR pszFrom, ULONG nStatus = 0, DWORD nReplies = 1)
{
    return {nReplies, pszFrom, nStatus, 0};
}

constexpr Outcome Error(DWORD dwError)
{
    return {0, L"192.168.1.100", 0, dwError};
}

constexpr Outcome kAnswer = Reply(L"192.168.1.100");
constexpr Outcome kSilence = Error(11010);

// An ICMP interface that gives its outcomes one after the other, the last one for ever.
class Icmp
{
public:
    explicit Icmp(std::vector<Outcome> outcomes)
        : m_outcomes(std::move(outcomes)), m_create(Returns(kIcmp)),
          m_send([this](HANDLE, HANDLE, auto, void*, IPAddr, void* pRequest, WORD cbRequest, IP_OPTION_INFORMATION*,
                        void* pReply, DWORD, DWORD) { return Send(pRequest, cbRequest, pReply); }),
          m_close([](HANDLE) -> BOOL {
              unreplaced::SetLastError(ERROR_INVALID_HANDLE);
              return FALSE;
          })
    {
    }

    REPLACED(IcmpSendEcho2) & Sends()
    {
        return m_send;
    }

    const std::vector<std::string>& Payloads() const
    {
        return m_payloads;
    }

    void ExpectOpenedAndClosedOnce() const
    {
        EXPECT_EQ(m_create.Calls(), 1u);
        EXPECT_EQ(m_close.Calls(), 1u);
        EXPECT_EQ(m_close.Arg<0>(), kIcmp);
        EXPECT_EQ(Journal().front(), "IcmpCreateFile");
        EXPECT_EQ(Journal().back(), "IcmpCloseHandle");
    }

private:
    DWORD Send(const void* pRequest, WORD cbRequest, void* pReply)
    {
        const Outcome& outcome = m_outcomes[std::min(m_payloads.size(), m_outcomes.size() - 1)];
        m_payloads.emplace_back(static_cast<const char*>(pRequest), cbRequest);
        std::memset(pReply, 0x33, 92);
        auto& reply = *static_cast<ICMP_ECHO_REPLY*>(pReply);
        reply.Address = MakeAddress(outcome.pszFrom, 0).sin_addr.s_addr;
        reply.Status = outcome.nStatus;
        unreplaced::SetLastError(outcome.dwError);
        return outcome.nReplies;
    }

    std::vector<Outcome> m_outcomes;
    std::vector<std::string> m_payloads;
    REPLACED(IcmpCreateFile) m_create;
    REPLACED(IcmpSendEcho2) m_send;
    REPLACED(IcmpCloseHandle) m_close;
};

class IcmpProbe : public Test
{
protected:
    LRESULT Probe(PCWSTR pszAddress = L"192.168.1.100")
    {
        const SOCKADDR_IN address = MakeAddress(pszAddress, 43210);
        const LRESULT nResult =
            CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping(kPage, &address, StatusLine::Window());
        EXPECT_TRUE(Sleeps().empty());
        return nResult;
    }

    StatusLine m_status;

private:
    Sockets m_sockets;
};

// The first n of the status texts of 192.168.1.100.
std::vector<std::wstring> Pinging(int nAttempts)
{
    const std::vector<std::wstring> all = {L"Pinging 192.168.1.100 (1 of 6)", L"Pinging 192.168.1.100 (2 of 6)",
                                           L"Pinging 192.168.1.100 (3 of 6)", L"Pinging 192.168.1.100 (4 of 6)",
                                           L"Pinging 192.168.1.100 (5 of 6)", L"Pinging 192.168.1.100 (6 of 6)"};
    return {all.begin(), all.begin() + nAttempts};
}

std::vector<std::wstring> PingingUnreachable(int nAttempts)
{
    std::vector<std::wstring> texts = Pinging(nAttempts);
    texts.emplace_back(L"Unreachable");
    return texts;
}

TEST_F(IcmpProbe, SucceedsWithTheFirstAnswer)
{
    const Icmp icmp({kAnswer});
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(), Pinging(1));
    EXPECT_EQ(Journal(), (Lines{"IcmpCreateFile", "status \"Pinging 192.168.1.100 (1 of 6)\"", "IcmpSendEcho2",
                                "IcmpCloseHandle"}));
    icmp.ExpectOpenedAndClosedOnce();
}

TEST_F(IcmpProbe, SendsAFixedTextAndWaitsOneSecond)
{
    Icmp icmp({kSilence, kAnswer});
    EXPECT_EQ(Probe(), 0);
    ASSERT_EQ(icmp.Sends().Calls(), 2u);
    for (const size_t n : {0u, 1u}) {
        EXPECT_EQ(icmp.Sends().Arg<0>(n), kIcmp);
        EXPECT_EQ(icmp.Sends().Arg<1>(n), nullptr);
        EXPECT_EQ(icmp.Sends().Arg<2>(n), nullptr);
        EXPECT_EQ(icmp.Sends().Arg<3>(n), nullptr);
        EXPECT_EQ(icmp.Sends().Arg<4>(n), 0x6401A8C0u);
        EXPECT_EQ(icmp.Sends().Arg<6>(n), 28);
        EXPECT_EQ(icmp.Sends().Arg<7>(n), nullptr);
        EXPECT_NE(icmp.Sends().Arg<8>(n), nullptr);
        EXPECT_EQ(icmp.Sends().Arg<9>(n), 92u);
        EXPECT_EQ(icmp.Sends().Arg<10>(n), 1000u);
        EXPECT_EQ(icmp.Payloads()[n], std::string("Some arbitrary data to send\0", 28));
    }
    EXPECT_EQ(icmp.Sends().Arg<8>(0), icmp.Sends().Arg<8>(1));
}

TEST_F(IcmpProbe, PingsTheAddressThatItIsGiven)
{
    Icmp icmp({Reply(L"10.0.0.7")});
    EXPECT_EQ(Probe(L"10.0.0.7"), 0);
    EXPECT_EQ(icmp.Sends().Arg<4>(), 0x0700000Au);
    EXPECT_EQ(m_status.Texts(), std::vector<std::wstring>{L"Pinging 10.0.0.7 (1 of 6)"});
}

TEST_F(IcmpProbe, GivesUpAfterSixSilences)
{
    const Icmp icmp({kSilence});
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(m_status.Texts(), PingingUnreachable(6));
    ExpectBox(kPage, kNotFound, L"Invalid IP address");
    EXPECT_EQ(icmp.Payloads().size(), 6u);
    icmp.ExpectOpenedAndClosedOnce();
}

TEST_F(IcmpProbe, TellsThatItGaveUpBelowTheStatus)
{
    const Icmp icmp({kSilence});
    std::wstring strStatus;
    WhenBoxShows([&](const Box&) { strStatus = m_status.Texts().back(); });
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(strStatus, L"Unreachable");
    TakeBox();
}

TEST_F(IcmpProbe, SucceedsWithTheLastAnswer)
{
    const Icmp icmp({kSilence, kSilence, kSilence, kSilence, kSilence, kAnswer});
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(), Pinging(6));
    icmp.ExpectOpenedAndClosedOnce();
}

TEST_F(IcmpProbe, SucceedsHoweverManyReplies)
{
    const Icmp icmp({Reply(L"192.168.1.100", 0, 2)});
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(), Pinging(1));
}

TEST_F(IcmpProbe, TakesAReplyFromAnotherAddressForAFailedAttempt)
{
    const Icmp icmp({Reply(L"192.168.1.1"), kAnswer});
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(), Pinging(2));
}

TEST_F(IcmpProbe, TakesAReplyWithAnyOtherStatusForAFailedAttempt)
{
    const Icmp icmp({Reply(L"192.168.1.100", IP_DEST_HOST_UNREACHABLE), Reply(L"192.168.1.100", 1),
                     Reply(L"192.168.1.100", IP_REQ_TIMED_OUT), kAnswer});
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(), Pinging(4));
}

TEST_F(IcmpProbe, IgnoresTheLastErrorOfAReply)
{
    // A router's unreachable message, with a reason left behind: still one attempt of six.
    const Icmp icmp({{1, L"192.168.1.1", IP_DEST_HOST_UNREACHABLE, 1232}});
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(m_status.Texts(), PingingUnreachable(6));
    ExpectBox(kPage, kNotFound, L"Invalid IP address");
}

class IcmpProbeNoNetwork : public IcmpProbe, public testing::WithParamInterface<DWORD>
{
};

TEST_P(IcmpProbeNoNetwork, IsToldAtOnce)
{
    const Icmp icmp({Error(GetParam())});
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(m_status.Texts(), PingingUnreachable(1));
    ExpectBox(kPage, kNoNetwork, L"No Network Connection");
    EXPECT_EQ(JournalOf({"status \"Unreachable\"", std::string("box \"") + Narrow(kNoNetwork) + '"'}).front(),
              "status \"Unreachable\"");
    icmp.ExpectOpenedAndClosedOnce();
}

INSTANTIATE_TEST_SUITE_P(NetworkHostProtocolPort, IcmpProbeNoNetwork, testing::Values(1231, 1232, 1233, 1234));

TEST_F(IcmpProbe, NoticesOnALaterAttemptThatTheNetworkIsGone)
{
    const Icmp icmp({kSilence, kSilence, Error(1231)});
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(m_status.Texts(), PingingUnreachable(3));
    ExpectBox(kPage, kNoNetwork, L"No Network Connection");
}

struct OtherError
{
    DWORD dwError;
    PCWSTR pszHexadecimal;
};

class IcmpProbeError : public IcmpProbe, public testing::WithParamInterface<OtherError>
{
};

TEST_P(IcmpProbeError, IsToldWithItsCodeAndKeepsThePage)
{
    const Icmp icmp({kSilence, Error(GetParam().dwError)});
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(m_status.Texts(), Pinging(2));
    ExpectBox(kPage,
              std::wstring(L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest() failed "
                           L"with error ") +
                  GetParam().pszHexadecimal + L": " + SystemDescription(GetParam().dwError) + L"\r\n",
              L"Win32 Error");
    icmp.ExpectOpenedAndClosedOnce();
}

INSTANTIATE_TEST_SUITE_P(Codes, IcmpProbeError,
                         testing::Values(OtherError{11001, L"0x00002AF9"}, OtherError{6, L"0x00000006"},
                                         OtherError{1230, L"0x000004CE"}, OtherError{1235, L"0x000004D3"},
                                         OtherError{11009, L"0x00002B01"}, OtherError{11011, L"0x00002B03"},
                                         OtherError{11003, L"0x00002AFB"}, OtherError{0, L"0x00000000"}));

TEST_F(IcmpProbe, WithoutAnIcmpHandleFailsWithItsFirstRequestAndClosesNothing)
{
    const REPLACED(IcmpCreateFile) create(Returns(INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED));
    const REPLACED(IcmpSendEcho2) send(Returns(DWORD(0), ERROR_INVALID_HANDLE));
    REPLACED(IcmpCloseHandle) close;
    close.Optional();
    EXPECT_EQ(Probe(), -1);
    EXPECT_EQ(send.Arg<0>(), INVALID_HANDLE_VALUE);
    ExpectBox(kPage,
              L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest() failed with error "
              L"0x00000006: " +
                  SystemDescription(6) + L"\r\n",
              L"Win32 Error");
    EXPECT_EQ(m_status.Texts(), Pinging(1));
    EXPECT_EQ(close.Calls(), 0u);
}

TEST_F(IcmpProbe, BeginsAnewWithEveryCall)
{
    Icmp icmp({kSilence, kAnswer});
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(),
              (std::vector<std::wstring>{L"Pinging 192.168.1.100 (1 of 6)", L"Pinging 192.168.1.100 (2 of 6)",
                                         L"Pinging 192.168.1.100 (1 of 6)"}));
}

TEST_F(IcmpProbe, WritesAnEmptyAddressWhenThereIsNoTextForIt)
{
    const Icmp icmp({kAnswer});
    const REPLACED(InetNtopW) text(Returns(PCWSTR(nullptr)));
    EXPECT_EQ(Probe(), 0);
    EXPECT_EQ(m_status.Texts(), std::vector<std::wstring>{L"Pinging  (1 of 6)"});
}

TEST_F(IcmpProbe, FindsThisComputer)
{
    EXPECT_EQ(Probe(L"127.0.0.1"), 0);
    EXPECT_EQ(m_status.Texts(), std::vector<std::wstring>{L"Pinging 127.0.0.1 (1 of 6)"});
}

// The C runtime's own heap knows which of its blocks are in use.
bool IsAllocated(const void* p)
{
    return HeapValidate(reinterpret_cast<HANDLE>(_get_heap_handle()), 0, p) != FALSE;
}

TEST_F(IcmpProbe, FreesTheReplyBeforeItClosesTheHandle)
{
    const void* pReply = nullptr;
    const REPLACED(IcmpCreateFile) create(Returns(kIcmp));
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
    const Icmp icmp({Error(11005)});
    CIcmpEcho echo;
    EXPECT_EQ(echo.SendEchoRequest(MakeAddress(L"192.168.1.100", 0).sin_addr.s_addr), 0u);
    EXPECT_EQ(GetLastError(), 11005u);
}

} // namespace
