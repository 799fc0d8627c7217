#include "tests/WizardTest.h"

#include "frame/AeroWizard.h"

namespace {

WizardTest* g_pTest;

// Time for posted messages to arrive before the next step; the timer's own messages come after them.
constexpr UINT kStepMs = 20;

const char* NameOf(UINT nCode)
{
    switch (nCode) {
    case PSN_SETACTIVE:
        return "active";
    case PSN_KILLACTIVE:
        return "kill";
    case PSN_WIZBACK:
        return "back";
    case PSN_WIZNEXT:
        return "next";
    case PSN_WIZFINISH:
        return "finish";
    case PSN_QUERYCANCEL:
        return "querycancel";
    case PSN_RESET:
        return "reset";
    default:
        return nullptr;
    }
}

} // namespace

std::string TextOf(HWND hwnd)
{
    char szText[256] = {};
    GetWindowTextA(hwnd, szText, ARRAYSIZE(szText));
    return szText;
}

void WizardTest::SetUp()
{
    g_pTest = this;
}

void WizardTest::TearDown()
{
    g_pTest = nullptr;
}

PROPSHEETHEADERW WizardTest::Header(std::vector<int> dialogs)
{
    m_records.clear();
    for (const int nDialog : dialogs) {
        PROPSHEETPAGEW record = {};
        record.dwSize = sizeof(record);
        record.dwFlags = PSP_USEHEADERTITLE;
        record.hInstance = GetModuleHandleW(nullptr);
        record.pszTemplate = MAKEINTRESOURCEW(nDialog);
        record.pfnDlgProc = DialogProc;
        record.lParam = static_cast<LPARAM>(m_records.size()) + 1;
        record.pszHeaderTitle = MAKEINTRESOURCEW(nDialog == IDD_BOX ? IDS_TITLE_BOX : IDS_TITLE_TEXT);
        m_records.push_back(record);
    }
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_AEROWIZARD | PSH_PROPSHEETPAGE;
    header.hwndParent = GetDesktopWindow();
    header.hInstance = GetModuleHandleW(nullptr);
    header.pszCaption = MAKEINTRESOURCEW(IDS_CAPTION);
    header.nPages = static_cast<UINT>(m_records.size());
    header.ppsp = m_records.data();
    return header;
}

INT_PTR WizardTest::Run(std::vector<int> dialogs, Steps steps)
{
    return RunWith(Header(std::move(dialogs)), std::move(steps));
}

INT_PTR WizardTest::RunWith(const PROPSHEETHEADERW& header, Steps steps)
{
    m_journal.clear();
    m_steps = std::move(steps);
    m_nStep = 0;
    const UINT_PTR nTimer = SetTimer(nullptr, 0, kStepMs, OnTimer);
    const INT_PTR nResult = RunAeroWizard(header);
    const DWORD dwError = GetLastError();
    KillTimer(nullptr, nTimer);
    EXPECT_GE(m_nStep, m_steps.size()) << "the wizard ended before the script";
    SetLastError(dwError);
    return nResult;
}

void CALLBACK WizardTest::OnTimer(HWND, UINT, UINT_PTR, DWORD)
{
    g_pTest->NextStep();
}

void WizardTest::NextStep()
{
    if (m_nStep < m_steps.size()) {
        m_steps[m_nStep++]();
    } else if (Frame() != nullptr && m_nStep++ > m_steps.size() + 5) {
        ADD_FAILURE() << "the script ended before the wizard";
        m_answers.clear();
        SendMessageW(Frame(), WM_CLOSE, 0, 0);
    }
}

INT_PTR CALLBACK WizardTest::DialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    const auto nPage = static_cast<int>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    switch (nMessage) {
    case WM_INITDIALOG: {
        const auto nNew = static_cast<int>(reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, nNew);
        g_pTest->m_journal.push_back(std::to_string(nNew) + " init");
        return g_pTest->m_onInitDialog ? g_pTest->m_onInitDialog(nNew, hwnd) : TRUE;
    }
    case WM_NOTIFY:
        return g_pTest->OnNotify(nPage, hwnd, *reinterpret_cast<const PSHNOTIFY*>(lParam));
    case WM_COMMAND:
        if (g_pTest->m_onCommand && HIWORD(wParam) == BN_CLICKED) {
            g_pTest->m_onCommand(nPage, LOWORD(wParam));
        }
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR WizardTest::OnNotify(int nPage, HWND hwnd, const PSHNOTIFY& notification)
{
    const UINT nCode = notification.hdr.code;
    if (NameOf(nCode) == nullptr) {
        return FALSE;
    }
    EXPECT_EQ(notification.hdr.hwndFrom, GetParent(hwnd));
    std::string line = std::to_string(nPage) + " " + NameOf(nCode);
    if (notification.lParam != 0) {
        line += " close box";
    }
    m_journal.push_back(line);
    if (m_onNotify) {
        m_onNotify(nPage, hwnd, nCode);
    }
    const auto answer = m_answers.find({nPage, nCode});
    SetWindowLongPtrW(hwnd, DWLP_MSGRESULT, answer == m_answers.end() ? 0 : answer->second);
    return TRUE;
}

HWND WizardTest::Frame() const
{
    return FindWindowW(L"NativeHWNDHost", nullptr);
}

HWND WizardTest::CurrentPage() const
{
    return reinterpret_cast<HWND>(SendMessageW(Frame(), PSM_GETCURRENTPAGEHWND, 0, 0));
}

int WizardTest::CurrentNumber() const
{
    return static_cast<int>(GetWindowLongPtrW(CurrentPage(), GWLP_USERDATA));
}

HWND WizardTest::Button(int nId) const
{
    return GetDlgItem(Frame(), nId);
}

HWND WizardTest::Control(int nId) const
{
    return GetDlgItem(CurrentPage(), nId);
}

std::string WizardTest::VisibleButtons() const
{
    std::string names;
    for (const auto& [nId, pszName] : {std::pair(kBackButtonId, "Back"), std::pair(kNextButtonId, "Next"),
                                       std::pair(kFinishButtonId, "Finish"), std::pair(int{IDCANCEL}, "Cancel")}) {
        if (IsWindowVisible(Button(nId))) {
            names += names.empty() ? "" : " ";
            names += pszName;
        }
    }
    return names;
}

std::string WizardTest::HeaderTitle() const
{
    return TextOf(FindWindowExW(Frame(), nullptr, L"Static", nullptr));
}

int WizardTest::FocusId() const
{
    const HWND hwnd = GetFocus();
    return hwnd == nullptr || !IsChild(Frame(), hwnd) ? 0 : GetDlgCtrlID(hwnd);
}

void WizardTest::Click(int nButtonId) const
{
    SendMessageW(Button(nButtonId), BM_CLICK, 0, 0);
}

void WizardTest::Key(WORD nKey) const
{
    PostMessageW(GetFocus(), WM_KEYDOWN, nKey, 1);
    PostMessageW(GetFocus(), WM_KEYUP, nKey, static_cast<LPARAM>(0xC0000001));
}

void WizardTest::KeyWith(WORD nModifier, WORD nKey) const
{
    BYTE state[256] = {};
    GetKeyboardState(state);
    state[nModifier] = 0x80;
    SetKeyboardState(state);
    const bool bAlt = nModifier == VK_MENU;
    // What Alt is held with comes as a system key, with a bit that says so.
    MSG message = {};
    message.hwnd = GetFocus();
    message.message = bAlt ? WM_SYSKEYDOWN : WM_KEYDOWN;
    message.wParam = nKey;
    message.lParam = bAlt ? 0x20000001 : 1;
    if (!SendMessageW(Frame(), PSM_ISDIALOGMESSAGE, 0, reinterpret_cast<LPARAM>(&message)) && bAlt) {
        message.message = WM_SYSCHAR;
        SendMessageW(Frame(), PSM_ISDIALOGMESSAGE, 0, reinterpret_cast<LPARAM>(&message));
    }
    state[nModifier] = 0;
    SetKeyboardState(state);
}

void WizardTest::ShowButtons(DWORD dwButtons, DWORD dwMask) const
{
    PostMessageW(Frame(), PSM_SHOWWIZBUTTONS, dwButtons, static_cast<LPARAM>(dwMask));
}
