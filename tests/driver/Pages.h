// The wizard's pages as somebody who goes through them knows them.
#pragma once

#include "res/resource.h"

#include <windows.h>

#include <array>

constexpr PCWSTR kTitle = L"KALVO Solvane Android Watch Installer";

// The frame's buttons, as bits.
enum BUTTONS : UINT
{
    kBack = 1,
    kNext = 2,
    kFinish = 4,
    kCancel = 8
};
constexpr int kBackId = 0x3023;
constexpr int kNextId = 0x3024;
constexpr int kFinishId = 0x3025;

struct FRAME_BUTTON
{
    UINT nButton; // the bit
    int nId;      // of its window
    PCWSTR pszText;
};

constexpr std::array<FRAME_BUTTON, 4> kFrameButtons = {{{kBack, kBackId, L"Back"},
                                                        {kNext, kNextId, L"Next"},
                                                        {kFinish, kFinishId, L"Finish"},
                                                        {kCancel, IDCANCEL, L"Cancel"}}};

struct PAGE
{
    int nNumber;
    PCWSTR pszTitle;
    int nBodyId;
    int nBoxId;    // to tick; 0 where there is none
    int nStatusId; // 0 where there is none
    int nFocusId;  // what has the keyboard when the page is shown for the first time
    UINT nFirst;   // the buttons then
};

// Without and with what a page asks for.
constexpr UINT kWaiting = kBack | kCancel;
constexpr UINT kReady = kBack | kNext | kCancel;

constexpr std::array<PAGE, 14> kPages = {{
    {1, L"Welcome to the Solvane Android watch installer", IDC_WELCOME_BODY, 0, 0, kNextId, kNext | kCancel},
    {2, L"Connect to Wi-Fi network", IDC_CONNECT_WIFI_BODY, IDC_CONNECT_WIFI_CHECK, 0, IDC_CONNECT_WIFI_CHECK,
     kWaiting},
    {3, L"Turn on developer options", IDC_DEVELOPER_OPTIONS_ON_BODY, IDC_DEVELOPER_OPTIONS_ON_CHECK, 0,
     IDC_DEVELOPER_OPTIONS_ON_CHECK, kWaiting},
    {4, L"Turn on stay awake when charging", IDC_STAY_AWAKE_ON_BODY, IDC_STAY_AWAKE_ON_CHECK, 0,
     IDC_STAY_AWAKE_ON_CHECK, kWaiting},
    {5, L"Turn on Wireless debugging", IDC_WIRELESS_DEBUGGING_ON_BODY, 0, IDC_WIRELESS_DEBUGGING_ON_STATUS,
     IDC_WATCH_ADDRESS, kWaiting},
    {6, L"Pair watch to workstation", IDC_PAIR_DEVICE_BODY, IDC_SKIP_PAIRING, IDC_PAIR_DEVICE_STATUS, IDC_PAIRING_CODE,
     kWaiting},
    {7, L"Install Solvane client (APK file)", IDC_INSTALL_APK_BODY, 0, IDC_INSTALL_APK_STATUS, IDC_APK_PATH, kReady},
    {8, L"Solvane client installed", IDC_APK_INSTALLED_BODY, 0, 0, kNextId, kReady},
    {9, L"Turn off stay awake when charging", IDC_STAY_AWAKE_OFF_BODY, IDC_STAY_AWAKE_OFF_CHECK, 0,
     IDC_STAY_AWAKE_OFF_CHECK, kWaiting},
    {10, L"Turn on Wireless debugging", IDC_WIRELESS_DEBUGGING_OFF_BODY, IDC_WIRELESS_DEBUGGING_OFF_CHECK, 0,
     IDC_WIRELESS_DEBUGGING_OFF_CHECK, kWaiting},
    {11, L"Revoke ebugging authorizations", IDC_REVOKE_AUTHORIZATIONS_BODY, IDC_REVOKE_AUTHORIZATIONS_CHECK, 0,
     IDC_REVOKE_AUTHORIZATIONS_CHECK, kWaiting},
    {12, L"Turn off developer options", IDC_DEVELOPER_OPTIONS_OFF_BODY, IDC_DEVELOPER_OPTIONS_OFF_CHECK, 0,
     IDC_DEVELOPER_OPTIONS_OFF_CHECK, kWaiting},
    {13, L"Disconnect from Wi-Fi network", IDC_DISCONNECT_WIFI_BODY, IDC_DISCONNECT_WIFI_CHECK, 0,
     IDC_DISCONNECT_WIFI_CHECK, kWaiting},
    {14, L"Finished Solvane application installation", IDC_FINISHED_BODY, 0, 0, kFinishId, kBack | kFinish},
}};

constexpr const PAGE& PageNumber(int nNumber)
{
    return kPages[static_cast<size_t>(nNumber) - 1];
}
