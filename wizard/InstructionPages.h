// The pages that only tell the user what to do on the watch. All are alike: a body text and a check
// box that decides which buttons the frame shows.
#pragma once

#include "res/resource.h"
#include "wizard/WizardPage.h"

// What one of these pages differs in.
struct INSTRUCTION_PAGE
{
    int nBodyId;
    UINT nBodyStringId;
    int nCheckId;
    UINT nCheckStringId;
    DWORD dwShownTicked = kBackNextCancel;
    DWORD dwShownUnticked = kBackCancel;
    DWORD dwAffected = kBackNextCancel;
};

// The dialog procedure of all of them.
INT_PTR InstructionPageProc(const INSTRUCTION_PAGE& page, HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

template<INSTRUCTION_PAGE t_page>
class CInstructionPage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
    {
        return InstructionPageProc(t_page, hwndPage, nMessage, wParam, lParam);
    }
};

using CConnectWiFiPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_CONNECT_WIFI_BODY,
                                                           .nBodyStringId = IDS_CONNECT_WIFI_BODY,
                                                           .nCheckId = IDC_CONNECT_WIFI_CHECK,
                                                           .nCheckStringId = IDS_CONNECT_WIFI_CHECK}>;

using CDeveloperOptionsOnPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_DEVELOPER_OPTIONS_ON_BODY,
                                                                  .nBodyStringId = IDS_DEVELOPER_OPTIONS_ON_BODY,
                                                                  .nCheckId = IDC_DEVELOPER_OPTIONS_ON_CHECK,
                                                                  .nCheckStringId = IDS_DEVELOPER_OPTIONS_ON_CHECK}>;

using CStayAwakeOnPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_STAY_AWAKE_ON_BODY,
                                                           .nBodyStringId = IDS_STAY_AWAKE_ON_BODY,
                                                           .nCheckId = IDC_STAY_AWAKE_ON_CHECK,
                                                           .nCheckStringId = IDS_STAY_AWAKE_ON_CHECK}>;

using CStayAwakeOffPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_STAY_AWAKE_OFF_BODY,
                                                            .nBodyStringId = IDS_STAY_AWAKE_OFF_BODY,
                                                            .nCheckId = IDC_STAY_AWAKE_OFF_CHECK,
                                                            .nCheckStringId = IDS_STAY_AWAKE_OFF_CHECK}>;

using CWirelessDebuggingOffPage =
    CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_WIRELESS_DEBUGGING_OFF_BODY,
                                      .nBodyStringId = IDS_WIRELESS_DEBUGGING_OFF_BODY,
                                      .nCheckId = IDC_WIRELESS_DEBUGGING_OFF_CHECK,
                                      .nCheckStringId = IDS_WIRELESS_DEBUGGING_OFF_CHECK}>;

using CRevokeAuthorizationsPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_REVOKE_AUTHORIZATIONS_BODY,
                                                                    .nBodyStringId = IDS_REVOKE_AUTHORIZATIONS_BODY,
                                                                    .nCheckId = IDC_REVOKE_AUTHORIZATIONS_CHECK,
                                                                    .nCheckStringId = IDS_REVOKE_AUTHORIZATIONS_CHECK}>;

using CDeveloperOptionsOffPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_DEVELOPER_OPTIONS_OFF_BODY,
                                                                   .nBodyStringId = IDS_DEVELOPER_OPTIONS_OFF_BODY,
                                                                   .nCheckId = IDC_DEVELOPER_OPTIONS_OFF_CHECK,
                                                                   .nCheckStringId = IDS_DEVELOPER_OPTIONS_OFF_CHECK}>;

using CDisconnectWiFiPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_DISCONNECT_WIFI_BODY,
                                                              .nBodyStringId = IDS_DISCONNECT_WIFI_BODY,
                                                              .nCheckId = IDC_DISCONNECT_WIFI_CHECK,
                                                              .nCheckStringId = IDS_DISCONNECT_WIFI_CHECK}>;

// Its check box, an offer to go round again for another watch, is created hidden and nothing shows
// it: the page always offers Back and Finish and hides Cancel.
using CFinishedPage = CInstructionPage<INSTRUCTION_PAGE{.nBodyId = IDC_FINISHED_BODY,
                                                        .nBodyStringId = IDS_FINISHED_BODY,
                                                        .nCheckId = IDC_FINISHED_CHECK,
                                                        .nCheckStringId = IDS_FINISHED_CHECK,
                                                        .dwShownTicked = PSWIZB_BACK | PSWIZB_NEXT,
                                                        .dwShownUnticked = PSWIZB_BACK | PSWIZB_FINISH,
                                                        .dwAffected = PSWIZB_BACK | PSWIZB_FINISH | PSWIZB_CANCEL}>;
