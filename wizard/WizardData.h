// What the pages of the wizard share.
#pragma once

#include "app/ground/Platform.h"

// One block for the whole run of the wizard. Its address reaches every page as the lParam of its
// page record.
struct CWizardData
{
    WCHAR m_szPairingCode[7] = L"000000"; // of the last successful pairing

    // The watch's IPv4 address and wireless debugging port, network order. All zero until the
    // wireless debugging page has found the watch there.
    SOCKADDR_STORAGE m_saWatchAddress = {};
};
