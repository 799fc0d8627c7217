#include "tests/Wizard.h"

#include "frame/AeroWizard.h"

namespace {

Wizard* g_pTest;

constexpr PCWSTR kCaption = L"A wizard";

// Time for posted messages to arrive before the next step; the timer's own messages come after them.
constexpr UINT kStepMs = 20;

const std::map<UINT, std::string> kNotifications = {
    {PSN_SETACTIVE, "active"}, {PSN_KILLACTIVE, "kill"},  {PSN_WIZBACK, "back"},
    {PSN_WIZNEXT, "next"},     {PSN_WIZFINISH, "finish"}, {PSN_QUERYCANCEL, "querycancel"},
};

void HoldShift(bool bHeld)
{
    BYTE state[256] = {};
    GetKeyboardState(state);
    state[VK_SHIFT] = bHeld ? 0x80 : 0;
    SetKeyboardState(state);
}

} // namespace

INT_PTR Wizard::Run(const std::vector<int>& dialogs, Steps steps)
{
    std::vector<PROPSHEETPAGEW> records;
    for (const int nDialog : dialogs) {
        PROPSHEETPAGEW record = {};
        record.dwSize = sizeof(record);
        record.hInstance = GetModuleHandleW(nullptr);
        record.pszTemplate = MAKEINTRESOURCEW(nDialog);
        record.pfnDlgProc = DialogProc;
        record.lParam = static_cast<LPARAM>(records.size()) + 1;
        records.push_back(record);
    }
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_AEROWIZARD | PSH_PROPSHEETPAGE;
    header.pszCaption = kCaption;
    header.nPages = static_cast<UINT>(records.size());
    header.ppsp = records.data();

    g_pTest = this;
    m_journal.clear();
    m_steps = std::move(steps);
    m_nStep = 0;
    const UINT_PTR nTimer = SetTimer(nullptr, 0, kStepMs, OnTimer);
    const INT_PTR nResult = RunAeroWizard(header);
    KillTimer(nullptr, nTimer);
    EXPECT_GE(m_nStep, m_steps.size()) << "the wizard ended before the script";
    return nResult;
}

void CALLBACK Wizard::OnTimer(HWND /*hwnd*/, UINT /*nMessage*/, UINT_PTR /*nTimer*/, DWORD /*dwTime*/)
{
    g_pTest->NextStep();
}

void Wizard::NextStep()
{
    HoldShift(false);
    if (m_nStep < m_steps.size()) {
        SCOPED_TRACE("step " + std::to_string(m_nStep));
        m_steps[m_nStep++]();
    } else if (Frame() != nullptr && m_nStep++ > m_steps.size() + 5) {
        ADD_FAILURE() << "the script ended before the wizard";
        m_answers.clear();
        SendMessageW(Frame(), WM_CLOSE, 0, 0);
    }
}

INT_PTR CALLBACK Wizard::DialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
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
        if (HIWORD(wParam) == BN_CLICKED) {
            g_pTest->m_journal.push_back(std::to_string(nPage) + " click");
        }
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR Wizard::OnNotify(int nPage, HWND hwnd, const PSHNOTIFY& notification)
{
    const UINT nCode = notification.hdr.code;
    const auto name = kNotifications.find(nCode);
    if (name == kNotifications.end()) {
        return FALSE;
    }
    EXPECT_EQ(notification.hdr.hwndFrom, GetParent(hwnd));
    m_journal.push_back(std::to_string(nPage) + " " + name->second);
    if (nCode == PSN_SETACTIVE && m_onActivation) {
        m_onActivation(nPage, hwnd);
    }
    const auto answer = m_answers.find({nPage, nCode});
    SetWindowLongPtrW(hwnd, DWLP_MSGRESULT, answer == m_answers.end() ? 0 : answer->second);
    return TRUE;
}

Step Wizard::Click(int nId)
{
    return [=, this] { SendMessageW(Window(nId), BM_CLICK, 0, 0); };
}

Step Wizard::PressByMessage(int nButton)
{
    return [=, this] { SendMessageW(Frame(), PSM_PRESSBUTTON, static_cast<WPARAM>(nButton), 0); };
}

Step Wizard::Press(WORD nKey)
{
    return [=] { PostMessageW(GetFocus(), WM_KEYDOWN, nKey, 1); };
}

Step Wizard::PressWithShift(WORD nKey)
{
    return [=] {
        HoldShift(true);
        PostMessageW(GetFocus(), WM_KEYDOWN, nKey, 1);
    };
}

// What Alt is held with comes as a system key, with a bit that says so.
Step Wizard::PressWithAlt(WORD nKey)
{
    return [=] { PostMessageW(GetFocus(), WM_SYSKEYDOWN, nKey, 0x20000001); };
}

Step Wizard::ShowButtons(DWORD dwButtons, DWORD dwMask)
{
    return [=, this] { PostMessageW(Frame(), PSM_SHOWWIZBUTTONS, dwButtons, static_cast<LPARAM>(dwMask)); };
}

Step Wizard::FocusOn(int nId)
{
    return [=, this] { SetFocus(Window(nId)); };
}

Step Wizard::ExpectPage(int nNumber)
{
    return [=, this] { EXPECT_EQ(GetWindowLongPtrW(CurrentPage(), GWLP_USERDATA), nNumber); };
}

Step Wizard::ExpectFocus(int nId)
{
    return [=] { EXPECT_EQ(GetDlgCtrlID(GetFocus()), nId); };
}

Step Wizard::ExpectButtons(const char* pszNames)
{
    return [=, this] { EXPECT_EQ(VisibleButtons(), pszNames); };
}

HWND Wizard::Frame() const
{
    return FindWindowW(L"NativeHWNDHost", kCaption);
}

HWND Wizard::CurrentPage() const
{
    HWND hwnd = nullptr;
    do {
        hwnd = FindWindowExW(Frame(), hwnd, L"#32770", nullptr);
    } while (hwnd != nullptr && !IsWindowVisible(hwnd));
    return hwnd;
}

HWND Wizard::Window(int nId) const
{
    const HWND hwndButton = GetDlgItem(Frame(), nId);
    return hwndButton != nullptr ? hwndButton : GetDlgItem(CurrentPage(), nId);
}

std::string Wizard::VisibleButtons() const
{
    std::string names;
    for (const auto& [nId, pszName] : {std::pair(kBackButtonId, "Back"), std::pair(kNextButtonId, "Next"),
                                       std::pair(kFinishButtonId, "Finish"), std::pair(IDCANCEL, "Cancel")}) {
        if (IsWindowVisible(Window(nId))) {
            names += names.empty() ? "" : " ";
            names += pszName;
        }
    }
    return names;
}
