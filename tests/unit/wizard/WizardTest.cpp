// The frame's settings, the page table and the data that the pages share.

#include "wizard/Wizard.h"

#include "tests/kit/Test.h"
#include "tests/unit/wizard/Pages.h"

#include <algorithm>
#include <cstddef>
#include <new>

using namespace kit;

namespace {

const HINSTANCE kInstance = reinterpret_cast<HINSTANCE>(0x1230000);

class Wizard : public Test
{
protected:
    // Runs the wizard with a frame that only looks at what it gets.
    template<typename Look>
    void Run(Look look)
    {
        const REPLACED(PropertySheetW) frame([&](const PROPSHEETHEADERW* pHeader) -> INT_PTR {
            look(*pHeader);
            return 1;
        });
        RunWizard(kInstance, m_data);
        EXPECT_EQ(frame.Calls(), 1u);
    }

    CWizardData m_data;
};

TEST_F(Wizard, IsAnAeroWizardWithIconAndTitleOfTheApplication)
{
    Run([](const PROPSHEETHEADERW& header) {
        EXPECT_EQ(header.dwSize, 96u);
        EXPECT_EQ(header.dwFlags, 0x4000u | 0x0008u | 0x0004u);
        EXPECT_EQ(header.hwndParent, GetDesktopWindow());
        EXPECT_EQ(header.hInstance, kInstance);
        EXPECT_EQ(header.pszIcon, MAKEINTRESOURCEW(206));
        EXPECT_EQ(header.pszCaption, MAKEINTRESOURCEW(201));
        EXPECT_EQ(header.nPages, 14u);
        EXPECT_EQ(header.nStartPage, 0u);
        EXPECT_EQ(header.pfnCallback, nullptr);
        EXPECT_EQ(header.hbmWatermark, nullptr);
        EXPECT_EQ(header.hplWatermark, nullptr);
        EXPECT_EQ(header.hbmHeader, nullptr);
    });
}

TEST_F(Wizard, HasFourteenPagesInTheirOrderWithTheSameData)
{
    static_assert(std::size(kPages) == 14);
    Run([this](const PROPSHEETHEADERW& header) {
        for (size_t n = 0; n < std::size(kPages); ++n) {
            SCOPED_TRACE(kPages[n].pszName);
            const PROPSHEETPAGEW& page = header.ppsp[n];
            EXPECT_EQ(page.pszTemplate, MAKEINTRESOURCEW(kPages[n].nDialogId));
            EXPECT_EQ(page.pfnDlgProc, kPages[n].pfnDialogProc);
            EXPECT_EQ(page.pszHeaderTitle, MAKEINTRESOURCEW(kPages[n].nTitleStringId));
            EXPECT_EQ(page.dwSize, sizeof(PROPSHEETPAGEW));
            EXPECT_EQ(page.dwFlags, 0x1000u);
            EXPECT_EQ(page.hInstance, kInstance);
            EXPECT_EQ(page.lParam, reinterpret_cast<LPARAM>(&m_data));
            EXPECT_EQ(page.pszIcon, nullptr);
            EXPECT_EQ(page.pszTitle, nullptr);
            EXPECT_EQ(page.pfnCallback, nullptr);
            EXPECT_EQ(page.pcRefParent, nullptr);
            EXPECT_EQ(page.pszHeaderSubTitle, nullptr);
            EXPECT_EQ(page.hActCtx, nullptr);
        }
    });
}

TEST_F(Wizard, ReturnsWhatTheFrameReturnsAndLeavesTheDataToThePages)
{
    for (const INT_PTR nResult : {-1, 0, 1, 5}) {
        const REPLACED(PropertySheetW) frame(Returns(nResult));
        EXPECT_EQ(RunWizard(kInstance, m_data), nResult);
    }
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
    EXPECT_EQ(m_data.m_saWatchAddress.ss_family, 0);
}

TEST(WizardData, HasTheCodeAndThenTheAddressAlignedToEightBytes)
{
    EXPECT_EQ(offsetof(CWizardData, m_szPairingCode), 0u);
    EXPECT_EQ(sizeof(CWizardData::m_szPairingCode), 7 * sizeof(WCHAR));
    EXPECT_EQ(offsetof(CWizardData, m_saWatchAddress), 16u);
    EXPECT_EQ(sizeof(CWizardData::m_saWatchAddress), 128u);
    EXPECT_EQ(alignof(CWizardData), 8u);
    EXPECT_EQ(sizeof(CWizardData), 144u);
}

TEST(WizardData, IsZeroAtFirstButForTheSixZerosOfTheCode)
{
    alignas(CWizardData) BYTE memory[sizeof(CWizardData)];
    std::ranges::fill(memory, BYTE(0xCC));
    const auto* pData = new (memory) CWizardData;
    EXPECT_STREQ(pData->m_szPairingCode, L"000000");
    const auto* pAddress = reinterpret_cast<const BYTE*>(&pData->m_saWatchAddress);
    EXPECT_TRUE(std::all_of(pAddress, pAddress + 128, [](BYTE b) { return b == 0; }));
}

} // namespace
