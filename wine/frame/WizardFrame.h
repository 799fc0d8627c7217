// The window of an Aero wizard: caption with the arrow, header title, page, strip with the buttons.
// Its class and its messages are those of Windows' own, as far as pages use them.
#pragma once

#include "frame/FrameButtons.h"
#include "frame/FrameFonts.h"
#include "frame/FrameLayout.h"
#include "frame/FramePaint.h"
#include "frame/PropertySheet.h"
#include "frame/WizardPages.h"

#include <optional>
#include <string>

// How a wizard ends: PropertySheet's results.
constexpr INT_PTR kWizardCancelled = 0;
constexpr INT_PTR kWizardFinished = 1;
constexpr INT_PTR kWizardFailed = -1;

class CWizardFrame
{
public:
    CWizardFrame() = default;
    ~CWizardFrame();
    CWizardFrame(const CWizardFrame&) = delete;
    CWizardFrame& operator=(const CWizardFrame&) = delete;

    // Makes the window and shows the start page in it. False, with the last error, when that fails.
    bool Create(const PROPSHEETHEADERW& header);

    // Null when the window is gone.
    HWND Window() const
    {
        return m_hwnd;
    }

    // Has a value once the wizard has ended; the window is then still there, but hidden.
    const std::optional<INT_PTR>& Result() const
    {
        return m_result;
    }

    // To be called after every message of the loop: the default button follows the focus.
    void FollowFocus();

    // From the keyboard. A button that is hidden or disabled cannot be pressed.
    void PressIfAvailable(DWORD dwButton);
    void PressEnter(HWND hwndFocus);
    void MoveFocus(bool bBackward);

private:
    // Posted after a page was activated: all that the page posted meanwhile has arrived.
    static constexpr UINT kSettleMessage = WM_APP + 2;

    static LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);

    // Each returns nothing for a message that is not its own.
    std::optional<LRESULT> OnWindowMessage(UINT nMessage, WPARAM wParam);
    std::optional<LRESULT> OnPaintMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> OnMouseMessage(UINT nMessage, LPARAM lParam);
    std::optional<LRESULT> OnSheetMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);

    void OnCommand(int nId);
    void OnActivate(bool bActive);
    LRESULT OnHitTest(LPARAM lParam) const;
    void OnMouseMove(POINT point);
    LRESULT OnGoTo(int nPage);
    void OnButtonsChanged();
    void SetCaption(std::wstring szCaption);
    void SetHeaderTitle(int nPage, PCWSTR pszTitle);

    void ReadHeader(const PROPSHEETHEADERW& header);
    void MakeLayout();
    bool CreateFrameWindow(HWND hwndOwner);
    bool CreateControls();

    void Press(DWORD dwButton);
    void Cancel(bool bByCloseBox);
    void GoTo(int nPage, int nStep);
    bool TurnTo(int nPage, int nStep);
    void End(INT_PTR nResult);

    void Settle();
    HWND Focus() const;
    void SetFocusTo(HWND hwnd);
    void PlaceFocus();
    void FocusDefault();
    bool IsFocusUsable() const;

    FRAME_LOOK Look() const;
    void RedrawCloseBox() const;

    UINT m_nDpi = GetDpiForSystem();
    CFrameFonts m_fonts{m_nDpi};
    std::optional<CFrameLayout> m_layout;
    CWizardPages m_pages;
    CFrameButtons m_buttons;
    CCloseBox m_closeBox;

    HWND m_hwnd = nullptr;
    HWND m_hwndOwner = nullptr; // null, or disabled while the wizard runs
    HWND m_hwndHeaderTitle = nullptr;
    HINSTANCE m_hInstance = nullptr; // of the caption's texts
    std::wstring m_szCaption;
    HICON m_hIcon = nullptr;
    HICON m_hSmallIcon = nullptr;

    HWND m_hwndFocus = nullptr;    // where the focus belongs while the window is not the active one
    HWND m_hwndFollowed = nullptr; // where it was after the last message
    bool m_bActive = false;
    bool m_bSettled = true;           // false from a page's activation until what it posted has arrived
    bool m_bDefaultGetsFocus = false; // once settled: the page has nothing of its own to focus
    std::optional<INT_PTR> m_result;
};
