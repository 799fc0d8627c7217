#include "tests/unit/wizard/PageWindow.h"

#include "tests/unit/net/SoiledStack.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

using namespace kit;

namespace {

constexpr PCWSTR kFrameClass = L"FrameOfOnePage";

// Status lines of the wireless debugging, pairing and install pages.
bool IsStatusLine(int nControlId)
{
    return nControlId == 1031 || nControlId == 1033 || nControlId == 1021;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const Buttons& buttons)
{
    return out << "0x" << std::hex << buttons.nShown << " of 0x" << buttons.nAffected << std::dec;
}

PageWindow::PageWindow(const Page& page, CWizardData& data, std::vector<int> missing)
    : m_pfnDialogProc(page.pfnDialogProc), m_missing(std::move(missing))
{
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_INTERNET_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);

    WNDCLASSW frameClass = {};
    frameClass.lpfnWndProc = FrameProc;
    frameClass.hInstance = GetModuleHandleW(nullptr);
    frameClass.lpszClassName = kFrameClass;
    RegisterClassW(&frameClass);

    s_pCurrent = this;
    m_record.dwSize = sizeof(m_record);
    m_record.lParam = reinterpret_cast<LPARAM>(&data);
    m_hwndFrame = CreateWindowExW(0, kFrameClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 800, 600, nullptr, nullptr,
                                  frameClass.hInstance, nullptr);
    m_hwndPage = CreateDialogParamW(frameClass.hInstance, MAKEINTRESOURCEW(page.nDialogId), m_hwndFrame, DialogProc,
                                    reinterpret_cast<LPARAM>(&m_record));
    if (m_hwndPage == nullptr) {
        throw std::runtime_error("no page");
    }
}

PageWindow::~PageWindow()
{
    DestroyWindow(m_hwndFrame);
    s_pCurrent = nullptr;
}

LRESULT CALLBACK PageWindow::FrameProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    if (nMessage == WM_USER + 138 && s_pCurrent != nullptr) {
        EXPECT_TRUE(s_pCurrent->m_bPumping) << "buttons are sent where they must be posted";
        s_pCurrent->m_buttons.push_back({wParam, lParam});
        return 0;
    }
    return DefWindowProcW(hwnd, nMessage, wParam, lParam);
}

LRESULT CALLBACK PageWindow::ControlProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    PageWindow& page = *s_pCurrent;
    const int nControlId = GetDlgCtrlID(hwnd);
    ControlMessage message = {nControlId, nMessage, wParam, lParam, {}};
    if (nMessage == WM_SETTEXT) {
        message.strText = reinterpret_cast<PCWSTR>(lParam);
        if (IsStatusLine(nControlId)) {
            Note("status \"" + Narrow(message.strText) + '"');
        }
    }
    page.m_messages.push_back(message);
    return CallWindowProcW(page.m_controlProcs[hwnd], hwnd, nMessage, wParam, lParam);
}

INT_PTR CALLBACK PageWindow::DialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    PageWindow& page = *s_pCurrent;
    page.m_messages.push_back({0, nMessage, wParam, lParam, {}});
    if (nMessage == WM_INITDIALOG) {
        page.PrepareControls(hwnd);
    }
    const INT_PTR nResult = page.m_pfnDialogProc(hwnd, nMessage, wParam, lParam);
    if (nMessage == WM_INITDIALOG) {
        page.m_nInitResult = nResult;
    } else if (nMessage != WM_COMMAND && nMessage != WM_NOTIFY) {
        EXPECT_EQ(nResult, FALSE) << "for message " << nMessage;
    }
    return nResult;
}

// Before the page sees its controls: some go, the others are listened to.
void PageWindow::PrepareControls(HWND hwndPage)
{
    for (const int nControlId : m_missing) {
        DestroyWindow(GetDlgItem(hwndPage, nControlId));
    }
    for (HWND hwnd = GetWindow(hwndPage, GW_CHILD); hwnd != nullptr; hwnd = GetWindow(hwnd, GW_HWNDNEXT)) {
        m_controlProcs[hwnd] =
            reinterpret_cast<WNDPROC>(SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ControlProc)));
    }
}

LRESULT PageWindow::Notify(UINT nCode)
{
    NMHDR header = {m_hwndFrame, 0, nCode};
    SetWindowLongPtrW(m_hwndPage, DWLP_MSGRESULT, 77);
    SoilStack();
    return Answered(m_pfnDialogProc(m_hwndPage, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)));
}

LRESULT PageWindow::Command(int nControlId, int nNotification)
{
    SetWindowLongPtrW(m_hwndPage, DWLP_MSGRESULT, 77);
    return Answered(m_pfnDialogProc(m_hwndPage, WM_COMMAND, static_cast<WPARAM>(MAKELONG(nControlId, nNotification)),
                                    reinterpret_cast<LPARAM>(Control(nControlId))));
}

LRESULT PageWindow::Answered(INT_PTR nResult) const
{
    EXPECT_EQ(nResult, TRUE);
    return GetWindowLongPtrW(m_hwndPage, DWLP_MSGRESULT);
}

void PageWindow::Pump()
{
    m_bPumping = true;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageW(&message);
    }
    m_bPumping = false;
}

ButtonsList PageWindow::TakeButtons()
{
    Pump();
    return std::exchange(m_buttons, {});
}

Buttons PageWindow::LastButtons()
{
    const ButtonsList all = TakeButtons();
    return all.empty() ? Buttons{} : all.back();
}

std::wstring PageWindow::Text(int nControlId) const
{
    WCHAR szText[2048] = {};
    GetDlgItemTextW(m_hwndPage, nControlId, szText, ARRAYSIZE(szText));
    return szText;
}

void PageWindow::SetText(int nControlId, PCWSTR pszText) const
{
    SendDlgItemMessageW(m_hwndPage, nControlId, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(pszText));
}

void PageWindow::Type(int nControlId, const std::wstring& strText) const
{
    for (const WCHAR ch : strText) {
        SendDlgItemMessageW(m_hwndPage, nControlId, WM_CHAR, ch, 1);
    }
}

void PageWindow::Click(int nControlId) const
{
    SendDlgItemMessageW(m_hwndPage, nControlId, BM_CLICK, 0, 0);
}

std::vector<ControlMessage> PageWindow::MessagesTo(int nControlId, const std::set<UINT>& kinds) const
{
    std::vector<ControlMessage> found;
    std::ranges::copy_if(m_messages, std::back_inserter(found), [&](const ControlMessage& message) {
        return message.nControlId == nControlId && kinds.contains(message.nMessage);
    });
    return found;
}

std::vector<std::wstring> PageWindow::TextsOf(int nControlId) const
{
    std::vector<std::wstring> texts;
    for (const ControlMessage& message : MessagesTo(nControlId, {WM_SETTEXT})) {
        texts.push_back(message.strText);
    }
    return texts;
}
