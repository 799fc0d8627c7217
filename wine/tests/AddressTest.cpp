// Addresses: texts, the control, the route.
#include "system/AddressControl.h"
#include "system/AddressText.h"
#include "system/BestRoute.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <array>
#include <utility>

using Fields = std::array<std::wstring, 4>;
using Address = std::pair<LRESULT, DWORD>;

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
        MendAddressControl();
        m_hwndParent =
            CreateWindowExW(0, L"Static", nullptr, WS_POPUP, 0, 0, 300, 100, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(m_hwndParent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrW(m_hwndParent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Listen));
        m_hwnd = Create(0);
        ASSERT_NE(m_hwnd, nullptr);
    }

    void TearDown() override
    {
        DestroyWindow(m_hwndParent);
    }

    HWND Create(DWORD dwStyle) const
    {
        return CreateWindowExW(0, WC_IPADDRESSW, nullptr, WS_CHILD | WS_VISIBLE | dwStyle, 0, 0, 200, 30, m_hwndParent,
                               nullptr, nullptr, nullptr);
    }

    // The number of fields that are filled, and the address of which they are a part.
    Address Holds() const
    {
        DWORD dwAddress = 0;
        const LRESULT nFields = SendMessageW(m_hwnd, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwAddress));
        return {nFields, dwAddress};
    }

    // Notes what the control holds when it tells of a change.
    static LRESULT CALLBACK Listen(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
    {
        auto* const pTest = reinterpret_cast<AddressControl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (nMessage == WM_NOTIFY && pTest != nullptr && pTest->m_hwnd != nullptr) {
            EXPECT_EQ(reinterpret_cast<const NMHDR*>(lParam)->code, static_cast<UINT>(IPN_FIELDCHANGED));
            pTest->m_told = pTest->Holds();
        }
        return DefWindowProcW(hwnd, nMessage, wParam, lParam);
    }

    // In the last field; returns what the control told of it.
    Address Type(WCHAR ch)
    {
        m_told = {-1, 0};
        SendMessageW(AddressFields(m_hwnd)[3], WM_CHAR, ch, 1);
        return m_told;
    }

    HWND m_hwndParent = nullptr;
    HWND m_hwnd = nullptr;
    Address m_told;
};

TEST_F(AddressControl, IsBlankAtFirst)
{
    EXPECT_EQ(Holds(), Address(0, 0));
    for (const HWND hwndField : AddressFields(m_hwnd)) {
        EXPECT_EQ(GetWindowTextLengthW(hwndField), 0);
    }
}

TEST_F(AddressControl, TakesATextAndLeavesTheFieldsBlankThatItLeavesOut)
{
    SetWindowTextW(m_hwnd, L"192.168.1.100");
    EXPECT_EQ(Holds(), Address(4, MAKEIPADDRESS(192, 168, 1, 100)));
    SetWindowTextW(m_hwnd, L"192.168.1.");
    EXPECT_EQ(Holds(), Address(3, MAKEIPADDRESS(192, 168, 1, 0)));
    SetWindowTextW(AddressFields(m_hwnd)[0], L"7");
    EXPECT_EQ(Holds(), Address(3, MAKEIPADDRESS(7, 168, 1, 0)));
}

TEST_F(AddressControl, StillTakesAnAddress)
{
    SendMessageW(m_hwnd, IPM_SETADDRESS, 0, MAKEIPADDRESS(10, 0, 0, 1));
    EXPECT_EQ(Holds(), Address(4, MAKEIPADDRESS(10, 0, 0, 1)));
}

TEST_F(AddressControl, GivesItsFontToItsFields)
{
    const auto hFont = reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT));
    SendMessageW(m_hwnd, WM_SETFONT, hFont, TRUE);
    for (const HWND hwndField : AddressFields(m_hwnd)) {
        EXPECT_EQ(SendMessageW(hwndField, WM_GETFONT, 0, 0), static_cast<LRESULT>(hFont));
    }
}

TEST_F(AddressControl, CanBeMadeDisabled)
{
    for (const HWND hwndField : AddressFields(Create(WS_DISABLED))) {
        EXPECT_TRUE(IsWindow(hwndField) && !IsWindowEnabled(hwndField));
    }
}

TEST_F(AddressControl, TellsOfEveryKeyThatChangesAFieldAndHoldsItByThen)
{
    SetWindowTextW(m_hwnd, L"192.168.1.");
    EXPECT_EQ(Type(L'7'), Address(4, MAKEIPADDRESS(192, 168, 1, 7)));
    EXPECT_EQ(Type(L'0'), Address(4, MAKEIPADDRESS(192, 168, 1, 70)));
    EXPECT_EQ(Type(VK_BACK), Address(4, MAKEIPADDRESS(192, 168, 1, 7)));
    EXPECT_EQ(Type(VK_BACK), Address(3, MAKEIPADDRESS(192, 168, 1, 0)));
}

TEST_F(AddressControl, DoesNotTellWhenAProgramFillsIt)
{
    SetWindowTextW(m_hwnd, L"192.168.1.");
    m_told = {-1, 0};
    SetWindowTextW(m_hwnd, L"10.0.0.1");
    EXPECT_EQ(m_told, Address(-1, 0));
}

// The home that tests run in has this gateway.
TEST(Route, LeadsOverTheGatewayByTheBestInterfaceAlone)
{
    SOCKADDR_INET destination = {};
    destination.Ipv4.sin_family = AF_INET;
    destination.Ipv4.sin_addr.s_addr = inet_addr("8.8.8.8");
    DWORD dwInterface = 0;
    ASSERT_EQ(GetBestInterface(destination.Ipv4.sin_addr.s_addr, &dwInterface), DWORD{NO_ERROR});
    MIB_IPFORWARD_ROW2 route = {};
    ASSERT_EQ(BestRoute(nullptr, dwInterface, nullptr, &destination, 0, &route, nullptr), DWORD{NO_ERROR});
    EXPECT_EQ(route.NextHop.si_family, AF_INET);
    EXPECT_STREQ(inet_ntoa(route.NextHop.Ipv4.sin_addr), "192.168.1.1");
    EXPECT_EQ(route.InterfaceIndex, dwInterface);
    EXPECT_EQ(BestRoute(nullptr, 0xFFFF, nullptr, &destination, 0, &route, nullptr), DWORD{ERROR_NOT_FOUND});
}
