// The window of an Aero wizard: caption with the arrow, header title, page, strip with the buttons.
// Its class and its messages are those of Windows' own, as far as pages use them.
#pragma once

#include "frame/FrameButtons.h"
#include "frame/FrameFonts.h"
#include "frame/FrameLayout.h"
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

    // Makes the window and shows the first page in it. False when that fails.
    bool Create(const PROPSHEETHEADERW& header);

    HWND Window() const
    {
        return m_hwnd;
    }

    // Has a value once the wizard has ended; the window is then still there.
    const std::optional<INT_PTR>& Result() const
    {
        return m_result;
    }

    // To be called after every message of the loop: the default button follows the focus.
    void FollowFocus();

    // From the keyboard. A button that is hidden cannot be pressed.
    void PressIfShown(int nId);
    void PressEnter(HWND hwndFocus);
    void MoveFocus(bool bBackward);

private:
    // Posted after a page was activated: all that the page posted meanwhile has arrived.
    static constexpr UINT kSettleMessage = WM_APP;

    static LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    // Each returns nothing for a message that is not its own.
    std::optional<LRESULT> OnWindowMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> OnPaintMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> OnSheetMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);

    void OnActivate(bool bActive);
    LRESULT OnHitTest(POINT point) const;

    bool CreateFrameWindow();
    void CreateControls();

    void Press(int nId);
    void GoTo(int nPage);
    bool TurnTo(int nPage);
    void End(INT_PTR nResult);

    void Settle();
    HWND Focus() const;
    void SetFocusTo(HWND hwnd);
    void PlaceFocus();
    void FocusDefault();
    bool IsFocusUsable() const;

    CFrameFonts m_fonts{GetDpiForSystem()};
    FRAME_LAYOUT m_layout = {};
    CWizardPages m_pages;
    CFrameButtons m_buttons;

    HWND m_hwnd = nullptr;
    HWND m_hwndHeaderTitle = nullptr;
    std::wstring m_szCaption;
    HICON m_hIcon = nullptr;

    HWND m_hwndFocus = nullptr;    // where the focus belongs while the window is not the active one
    HWND m_hwndFollowed = nullptr; // where it was after the last message
    bool m_bActive = false;
    bool m_bSettled = true;           // false from a page's activation until what it posted has arrived
    bool m_bDefaultGetsFocus = false; // once settled: the page has nothing of its own to focus
    std::optional<INT_PTR> m_result;
};
