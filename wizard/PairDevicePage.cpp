#include "wizard/PairDevicePage.h"

#include "adb/AdbCommands.h"
#include "app/ground/ErrorReport.h"
#include "net/WinSockHelper.h"
#include "res/resource.h"
#include "wizard/AdbSteps.h"
#include "wizard/IntegerEdit.h"
#include "wizard/PingWatch.h"
#include "wizard/Port.h"

namespace {

constexpr int kCodeDigits = 6;
constexpr WCHAR kOnInitDialog[] = L"CPairDevicePage::OnInitDialog()";
constexpr WCHAR kPair[] = L"CPairDevicePage::OnNotify_PSN_WIZNEXT_Pair";

bool IsWorthAnotherPair(ADB_EXIT_CODE nOutcome)
{
    return nOutcome == PAIR_FAILED;
}

bool IsSkipped(HWND hwndPage)
{
    return IsDlgButtonChecked(hwndPage, IDC_SKIP_PAIRING) == BST_CHECKED;
}

void ReportPairFailed(HWND hwndPage)
{
    MessageBoxW(hwndPage,
                L"Could not connect to a watch at the IP address and port you entered.\n\n"
                L"Verify you entered the correct IP address and pairing port.\n\n"
                L"If the IP address and pairing port are correct, then:\n"
                L"1. Pressing the Cancel button on the watch for pairing\n"
                L"2. Repeat the pairing process using the new values.\n\n"
                L"If the above does not work, Steps to restart installation:\n"
                L"1. Close this installer program.\n"
                L"2. Power the watch off and then turn it on again.\n"
                L"3. Run the installer program again.\n",
                L"Pair Connection", MB_OK);
}

} // namespace

INT_PTR CALLBACK CPairDevicePage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    static constexpr PAGE_HANDLERS kHandlers = {.nBodyId = IDC_PAIR_DEVICE_BODY,
                                                .nBodyStringId = IDS_PAIR_DEVICE_BODY,
                                                .pfnInitDialog = OnInitDialog,
                                                .pfnUpdateWizardButtons = UpdateWizardButtons,
                                                .pfnCommand = OnCommand,
                                                .pfnNext = OnNotify_PSN_WIZNEXT};
    return PageProc(kHandlers, hwndPage, nMessage, wParam, lParam);
}

BOOL CPairDevicePage::OnInitDialog(HWND hwndPage)
{
    if (const HWND hwndAddress = GetDlgItem(hwndPage, IDC_PAIRING_ADDRESS)) {
        const SOCKADDR_STORAGE& saWatch = GetWizardData(hwndPage).m_saWatchAddress;
        if (saWatch.ss_family != AF_INET) {
            ReportFatalError(kOnInitDialog, L"Invalid IP address type, e.g. IPv6");
        }
        const u_long nAddress = reinterpret_cast<const SOCKADDR_IN&>(saWatch).sin_addr.s_addr;
        SendMessageW(hwndAddress, IPM_SETADDRESS, 0, static_cast<LPARAM>(ntohl(nAddress)));
    }
    if (const HWND hwndPort = GetDlgItem(hwndPage, IDC_PAIRING_PORT)) {
        CIntegerEdit::Attach(hwndPort, kPortDigits, kOnInitDialog, L"CIntegerEdit::SetWindowSubclass(PORT, NULL)");
    }
    if (const HWND hwndCode = GetDlgItem(hwndPage, IDC_PAIRING_CODE)) {
        CIntegerEdit::Attach(hwndCode, kCodeDigits, kOnInitDialog, L"CIntegerEdit::SetWindowSubclass(CODE, NULL)");
    }
    return TRUE;
}

void CPairDevicePage::OnCommand(HWND hwndPage, UINT nControlId, WPARAM /*wParam*/, UINT nNotification)
{
    if ((nControlId == IDC_PAIRING_PORT || nControlId == IDC_PAIRING_CODE) && nNotification == EN_CHANGE) {
        UpdateWizardButtons(hwndPage);
    } else if (nControlId == IDC_SKIP_PAIRING && nNotification == BN_CLICKED) {
        const bool bSkipped = IsSkipped(hwndPage);
        for (const int nEditId : {IDC_PAIRING_PORT, IDC_PAIRING_CODE}) {
            const HWND hwndEdit = GetDlgItem(hwndPage, nEditId);
            if (bSkipped) {
                SetWindowTextW(hwndEdit, L"");
            }
            EnableWindow(hwndEdit, !bSkipped);
        }
        UpdateWizardButtons(hwndPage);
    }
}

void CPairDevicePage::UpdateWizardButtons(HWND hwndPage)
{
    const bool bComplete =
        IsSkipped(hwndPage) || (GetWindowTextLengthW(GetDlgItem(hwndPage, IDC_PAIRING_PORT)) >= kFewestPortDigits &&
                                GetWindowTextLengthW(GetDlgItem(hwndPage, IDC_PAIRING_CODE)) == kCodeDigits);
    ShowWizardButtons(hwndPage, bComplete ? kBackNextCancel : kBackCancel, kBackNextCancel);
}

LRESULT CPairDevicePage::OnNotify_PSN_WIZNEXT(HWND hwndPage)
{
    SetDlgItemTextW(hwndPage, IDC_PAIR_DEVICE_STATUS, L"Stopping ADB server");
    return IsSkipped(hwndPage) ? 0 : OnNotify_PSN_WIZNEXT_Pair(hwndPage);
}

LRESULT CPairDevicePage::OnNotify_PSN_WIZNEXT_Pair(HWND hwndPage)
{
    PAIRING pairing;
    if (!ReadPairing(hwndPage, pairing)) {
        return -1;
    }
    // The pair command then starts a new server.
    const ADB_EXIT_CODE nKillServer = KillServer();
    if (nKillServer != ADB_SUCCESS && nKillServer != KILL_SEVER_NOT_STARTED) {
        ReportServerNotStopped(hwndPage, kPair);
        return -1;
    }
    const HWND hwndStatus = GetDlgItem(hwndPage, IDC_PAIR_DEVICE_STATUS);
    const LRESULT nResult = PingWatch(hwndPage, &pairing.address, hwndStatus);
    return nResult != 0 ? nResult : PairWithWatch(hwndPage, pairing);
}

// The typed port and code. False, after a box, when they are not valid.
bool CPairDevicePage::ReadPairing(HWND hwndPage, PAIRING& pairing)
{
    BOOL bTranslated = FALSE;
    const UINT nPort = GetDlgItemInt(hwndPage, IDC_PAIRING_PORT, &bTranslated, FALSE);
    if (!bTranslated) {
        MessageBoxW(hwndPage,
                    L"Somehow you entered an invalid port number.\n\n"
                    L"Please enter a valid value (1024 through 65535) the port number and let us know how you managed "
                    L"to enter an invalid value.",
                    kPair, MB_OK);
        return false;
    }
    if (!IsUserPort(nPort)) {
        ReportInvalidPort(hwndPage);
        return false;
    }
    if (GetDlgItemTextW(hwndPage, IDC_PAIRING_CODE, pairing.szCode, ARRAYSIZE(pairing.szCode)) != kCodeDigits) {
        MessageBoxW(hwndPage,
                    L"You have entered an invalid pairing code.\n\n"
                    L"Please enter a valid six digit pair code value (000000 through 999999).  Please also report to "
                    L"KALVO how caused this error.",
                    L"Invalid Pairing Code", MB_OK);
        return false;
    }
    pairing.address = {};
    pairing.address.sin_family = AF_INET;
    pairing.address.sin_port = htons(static_cast<u_short>(nPort));
    pairing.address.sin_addr = reinterpret_cast<const SOCKADDR_IN&>(GetWizardData(hwndPage).m_saWatchAddress).sin_addr;
    return true;
}

LRESULT CPairDevicePage::PairWithWatch(HWND hwndPage, const PAIRING& pairing)
{
    CStringW szAddress;
    if (!CWinSockHelper::AddressToString(reinterpret_cast<const SOCKADDR*>(&pairing.address), szAddress)) {
        return -1;
    }
    CStringW szStatus;
    const auto Attempt = [&](int nAttempt) {
        szStatus.Format(L"Pairing attempt %d of %d", nAttempt, kAdbAttempts);
        SetDlgItemTextW(hwndPage, IDC_PAIR_DEVICE_STATUS, szStatus);
        return Pair(szAddress, pairing.szCode);
    };
    const ADB_EXIT_CODE nOutcome = RunAttempts(Attempt, IsWorthAnotherPair);

    const bool bPaired = nOutcome == ADB_SUCCESS || nOutcome == PAIR_ALREADY_PAIRED;
    if (bPaired) {
        szStatus.Format(L"Pairing to %s | %s", szAddress.GetString(), pairing.szCode);
        wcscpy_s(GetWizardData(hwndPage).m_szPairingCode, pairing.szCode);
    } else {
        szStatus = DescribeAdbExitCode(nOutcome).pszMessage;
        if (nOutcome != PAIR_FAILED) {
            MessageBoxW(hwndPage,
                        L"An unexpected error has occurred, please send a screenshot of this message to KALVO",
                        L"Pairing Error", MB_OK);
        }
    }
    SetDlgItemTextW(hwndPage, IDC_PAIR_DEVICE_STATUS, szStatus);
    if (nOutcome == PAIR_FAILED) {
        ReportPairFailed(hwndPage);
    }
    return bPaired ? 0 : -1;
}
