// What the pages share.

#include "wizard/WizardData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <new>

namespace {

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
