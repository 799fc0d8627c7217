// The pages of the wizard in their order, by the numbers of their dialogs, controls and texts.
#pragma once

#include "wizard/ApkInstalledPage.h"
#include "wizard/InstallApkPage.h"
#include "wizard/InstructionPages.h"
#include "wizard/PairDevicePage.h"
#include "wizard/WelcomePage.h"
#include "wizard/WirelessDebuggingOnPage.h"

#include <ostream>
#include <set>
#include <string>
#include <vector>

// What a page tells the frame: which of which buttons to show.
struct Buttons
{
    WPARAM nShown;
    LPARAM nAffected;
    bool operator==(const Buttons&) const = default;
};

using ButtonsList = std::vector<Buttons>;

// As literal bits: Back 1, Next 2, Finish 4, Cancel 16.
constexpr Buttons kWithNext = {0x13, 0x13};
constexpr Buttons kWithoutNext = {0x11, 0x13};
constexpr Buttons kNextAndCancel = {0x12, 0x13};
constexpr Buttons kLastTicked = {0x03, 0x15};
constexpr Buttons kLast = {0x05, 0x15};

// A text that a page loads into one of its controls.
struct LoadedText
{
    int nControlId;
    UINT nStringId;
};

struct Page
{
    PCSTR pszName;
    int nDialogId;
    DLGPROC pfnDialogProc;
    int nTitleStringId;
    LoadedText body;
    LoadedText check = {}; // the box of a page that only tells the user what to do
    Buttons first = kWithoutNext;
    std::set<UINT> heard = {}; // the notifications upon which it does something, but for PSN_SETACTIVE
    Buttons ticked = kWithNext;
};

inline void PrintTo(const Page& page, std::ostream* pOut)
{
    *pOut << page.pszName;
}

inline const std::set<UINT> kNextAndAddress = {PSN_WIZNEXT, IPN_FIELDCHANGED};

inline const Page kPages[] = {
    {"Welcome", 214, CWelcomePage::DialogProc, 217, {1028, 218}, {}, kNextAndCancel, {IPN_FIELDCHANGED}},
    {"ConnectWiFi", 203, CConnectWiFiPage::DialogProc, 219, {1014, 220}, {1015, 221}},
    {"DeveloperOptionsOn", 202, CDeveloperOptionsOnPage::DialogProc, 204, {1010, 205}, {1012, 206}},
    {"StayAwakeOn", 219, CStayAwakeOnPage::DialogProc, 230, {1046, 231}, {1047, 232}},
    {"DebuggingOn", 204, CWirelessDebuggingOnPage::DialogProc, 222, {1016, 223}, {}, kWithoutNext, kNextAndAddress},
    {"PairDevice", 215, CPairDevicePage::DialogProc, 215, {1034, 216}, {}, kWithoutNext, {PSN_WIZNEXT}},
    {"InstallApk", 206, CInstallApkPage::DialogProc, 210, {1019, 211}, {}, kWithoutNext, {PSN_WIZNEXT}},
    {"ApkInstalled", 224, CApkInstalledPage::DialogProc, 240, {1054, 241}, {}, kWithNext, {IPN_FIELDCHANGED}},
    {"StayAwakeOff", 221, CStayAwakeOffPage::DialogProc, 236, {1050, 237}, {1051, 238}},
    {"DebuggingOff", 222, CWirelessDebuggingOffPage::DialogProc, 202, {1052, 203}, {1053, 239}},
    {"RevokeAuthorizations", 220, CRevokeAuthorizationsPage::DialogProc, 233, {1048, 234}, {1049, 235}},
    {"DeveloperOptionsOff", 217, CDeveloperOptionsOffPage::DialogProc, 224, {1042, 225}, {1043, 226}},
    {"DisconnectWiFi", 218, CDisconnectWiFiPage::DialogProc, 227, {1044, 228}, {1045, 229}},
    {"Finished", 216, CFinishedPage::DialogProc, 207, {1040, 208}, {1041, 209}, kLast, {}, kLastTicked},
};

inline const Page& kWelcomePage = kPages[0];
inline const Page& kWirelessDebuggingOnPage = kPages[4];
inline const Page& kPairDevicePage = kPages[5];
inline const Page& kInstallApkPage = kPages[6];
