// Addresses: texts, the control, the route.
#include "system/AddressControl.h"
#include "system/AddressLook.h"
#include "system/AddressText.h"
#include "system/BestRoute.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <array>
#include <vector>

using Fields = std::array<std::wstring, 4>;

TEST(AddressText, HasFourFields)
{
    EXPECT_EQ(SplitAddress(L"192.168.1.100"), (Fields{L"192", L"168", L"1", L"100"}));
}

TEST(AddressText, MissingFieldsAreEmpty)
{
    EXPECT_EQ(SplitAddress(L"192.168.1."), (Fields{L"192", L"168", L"1", L""}));
    EXPECT_EQ(SplitAddress(L"10"), (Fields{L"10", L"", L"", L""}));
    EXPECT_EQ(SplitAddress(L""), (Fields{L"", L"", L"", L""}));
    EXPECT_EQ(SplitAddress(L"..3."), (Fields{L"", L"", L"3", L""}));
}

TEST(AddressText, NumbersAreAtMost255AndHaveNoLeadingZeros)
{
    EXPECT_EQ(SplitAddress(L"256.001.999999999999.0"), (Fields{L"255", L"1", L"255", L"0"}));
}

class AddressControl : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(MendAddressControl());
        m_hwndParent =
            CreateWindowExW(0, L"Static", nullptr, WS_POPUP, 0, 0, 300, 100, nullptr, nullptr, nullptr, nullptr);
        m_hwnd = CreateWindowExW(0, WC_IPADDRESSW, nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 200, 30, m_hwndParent, nullptr,
                                 nullptr, nullptr);
        ASSERT_NE(m_hwnd, nullptr);
    }

    void TearDown() override
    {
        DestroyWindow(m_hwndParent);
    }

    // The number of fields that are filled, and the address of which they are a part.
    std::pair<LRESULT, DWORD> Address() const
    {
        DWORD dwAddress = 0;
        const LRESULT nFields = SendMessageW(m_hwnd, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwAddress));
        return {nFields, dwAddress};
    }

    HWND m_hwndParent = nullptr;
    HWND m_hwnd = nullptr;
};

TEST_F(AddressControl, TakesAWholeText)
{
    SetWindowTextW(m_hwnd, L"192.168.1.100");
    EXPECT_EQ(Address(), std::pair(LRESULT{4}, DWORD{MAKEIPADDRESS(192, 168, 1, 100)}));
}

TEST_F(AddressControl, IsBlankAtFirst)
{
    EXPECT_EQ(Address(), std::pair(LRESULT{0}, DWORD{0}));
    for (const HWND hwndField : AddressFields(m_hwnd)) {
        EXPECT_EQ(GetWindowTextLengthW(hwndField), 0);
    }
}

TEST_F(AddressControl, LeavesTheFieldsBlankThatTheTextLeavesOut)
{
    SetWindowTextW(m_hwnd, L"192.168.1.100");
    SetWindowTextW(m_hwnd, L"192.168.1.");
    EXPECT_EQ(Address(), std::pair(LRESULT{3}, DWORD{MAKEIPADDRESS(192, 168, 1, 0)}));
}

TEST_F(AddressControl, KeepsABlankFieldWhenAnotherChanges)
{
    SetWindowTextW(m_hwnd, L"192.168.1.");
    SetWindowTextW(GetWindow(m_hwnd, GW_CHILD), L"7");
    EXPECT_EQ(Address().first, 3);
}

TEST_F(AddressControl, StillTakesAnAddress)
{
    SendMessageW(m_hwnd, IPM_SETADDRESS, 0, MAKEIPADDRESS(10, 0, 0, 1));
    EXPECT_EQ(Address(), std::pair(LRESULT{4}, DWORD{MAKEIPADDRESS(10, 0, 0, 1)}));
    SendMessageW(m_hwnd, IPM_CLEARADDRESS, 0, 0);
    EXPECT_TRUE(SendMessageW(m_hwnd, IPM_ISBLANK, 0, 0));
}

TEST_F(AddressControl, GivesItsFontToItsFields)
{
    const auto hFont = reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT));
    SendMessageW(m_hwnd, WM_SETFONT, hFont, TRUE);
    EXPECT_EQ(SendMessageW(m_hwnd, WM_GETFONT, 0, 0), static_cast<LRESULT>(hFont));
    for (HWND field = GetWindow(m_hwnd, GW_CHILD); field != nullptr; field = GetWindow(field, GW_HWNDNEXT)) {
        EXPECT_EQ(SendMessageW(field, WM_GETFONT, 0, 0), static_cast<LRESULT>(hFont));
    }
}

// The same in a parent that listens.
class AddressNotification : public AddressControl
{
protected:
    struct CHANGE
    {
        int nField, nValue;
        bool operator==(const CHANGE&) const = default;
    };

    void SetUp() override
    {
        AddressControl::SetUp();
        SetWindowLongPtrW(m_hwndParent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrW(m_hwndParent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Listen));
    }

    static LRESULT CALLBACK Listen(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
    {
        if (nMessage == WM_NOTIFY) {
            const auto& change = *reinterpret_cast<const NMIPADDRESS*>(lParam);
            EXPECT_EQ(change.hdr.code, static_cast<UINT>(IPN_FIELDCHANGED));
            reinterpret_cast<AddressNotification*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA))
                ->m_changes.push_back({change.iField, change.iValue});
        }
        return DefWindowProcW(hwnd, nMessage, wParam, lParam);
    }

    // In the field that is the last one on the screen.
    void Type(WCHAR ch)
    {
        SendMessageW(AddressFields(m_hwnd)[3], WM_CHAR, ch, 1);
    }

    std::vector<CHANGE> m_changes;
};

TEST_F(AddressNotification, ComesWithEveryKeyThatChangesAField)
{
    Type(L'7');
    ASSERT_FALSE(m_changes.empty());
    EXPECT_EQ(m_changes.back(), (CHANGE{3, 7}));
    Type(L'0');
    EXPECT_EQ(m_changes.back(), (CHANGE{3, 70}));
    m_changes.clear();
    Type(VK_BACK);
    ASSERT_FALSE(m_changes.empty());
    EXPECT_EQ(m_changes.back(), (CHANGE{3, 7}));
    Type(VK_BACK);
    EXPECT_EQ(m_changes.back(), (CHANGE{3, -1}));
}

TEST_F(AddressNotification, TellsWhatTheControlHoldsByThen)
{
    SetWindowTextW(m_hwnd, L"192.168.1.");
    Type(L'7');
    EXPECT_EQ(Address(), std::pair(LRESULT{4}, DWORD{MAKEIPADDRESS(192, 168, 1, 7)}));
}

TEST_F(AddressNotification, DoesNotComeWhenAProgramFillsTheControl)
{
    SetWindowTextW(m_hwnd, L"192.168.1.");
    m_changes.clear(); // of Wine's own
    SetWindowTextW(m_hwnd, L"10.0.0.1");
    EXPECT_EQ(m_changes, std::vector<CHANGE>{});
}

class Route : public testing::Test
{
protected:
    static SOCKADDR_INET Destination(const char* pszAddress)
    {
        SOCKADDR_INET destination = {};
        destination.Ipv4.sin_family = AF_INET;
        destination.Ipv4.sin_addr.s_addr = inet_addr(pszAddress);
        return destination;
    }

    DWORD Find(NET_IFINDEX nInterface, const SOCKADDR_INET& destination)
    {
        return BestRoute(nullptr, nInterface, nullptr, &destination, 0, &m_route, &m_source);
    }

    MIB_IPFORWARD_ROW2 m_route = {};
    SOCKADDR_INET m_source = {};
};

// The home that tests run in has this gateway and this address.
TEST_F(Route, LeadsOverTheGateway)
{
    SOCKADDR_IN destination = Destination("8.8.8.8").Ipv4;
    DWORD dwInterface = 0;
    ASSERT_EQ(GetBestInterfaceEx(reinterpret_cast<SOCKADDR*>(&destination), &dwInterface), DWORD{NO_ERROR});
    ASSERT_EQ(Find(dwInterface, Destination("8.8.8.8")), DWORD{NO_ERROR});
    EXPECT_EQ(m_route.NextHop.si_family, AF_INET);
    EXPECT_STREQ(inet_ntoa(m_route.NextHop.Ipv4.sin_addr), "192.168.1.1");
    EXPECT_EQ(m_route.InterfaceIndex, dwInterface);
    EXPECT_EQ(m_route.DestinationPrefix.PrefixLength, 0);
    EXPECT_STREQ(inet_ntoa(m_source.Ipv4.sin_addr), "192.168.1.2");
}

TEST_F(Route, NeedsAnInterfaceThatExists)
{
    EXPECT_EQ(Find(0xFFFF, Destination("8.8.8.8")), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(Route, KnowsOnlyIpv4)
{
    SOCKADDR_INET destination = {};
    destination.si_family = AF_INET6;
    EXPECT_EQ(Find(0, destination), DWORD{ERROR_NOT_SUPPORTED});
}

TEST_F(Route, NeedsItsArguments)
{
    EXPECT_EQ(BestRoute(nullptr, 0, nullptr, nullptr, 0, &m_route, &m_source), DWORD{ERROR_INVALID_PARAMETER});
    const SOCKADDR_INET destination = Destination("8.8.8.8");
    EXPECT_EQ(BestRoute(nullptr, 0, nullptr, &destination, 0, nullptr, &m_source), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(BestRoute(nullptr, 0, nullptr, &destination, 0, &m_route, nullptr), DWORD{ERROR_INVALID_PARAMETER});
}
