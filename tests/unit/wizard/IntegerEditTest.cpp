// The edit control that takes digits only, on a real one and with the real clipboard.

#include "wizard/IntegerEdit.h"

#include "tests/kit/Test.h"

#include <cstring>

using namespace kit;

namespace {

// An edit control of its own. The messages that reach the control itself leave their names in the
// journal.
class Edit
{
public:
    explicit Edit(DWORD dwStyle = 0)
        : m_hwnd(CreateWindowExW(0, L"Edit", L"before", WS_OVERLAPPED | ES_AUTOHSCROLL | dwStyle, 0, 0, 200, 30,
                                 nullptr, nullptr, GetModuleHandleW(nullptr), nullptr))
    {
        s_pfnEditProc =
            reinterpret_cast<WNDPROC>(SetWindowLongPtrW(m_hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&EditProc)));
        Journal().clear();
    }

    ~Edit()
    {
        DestroyWindow(m_hwnd);
    }

    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;

    void Attach(UINT nLimit) const
    {
        CIntegerEdit::Attach(m_hwnd, nLimit, L"Caller()", L"Failure");
    }

    HWND Window() const
    {
        return m_hwnd;
    }

    std::wstring Text() const
    {
        WCHAR szText[256] = {};
        GetWindowTextW(m_hwnd, szText, ARRAYSIZE(szText));
        return szText;
    }

    LRESULT Send(UINT nMessage, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(m_hwnd, nMessage, wParam, lParam);
    }

    void Type(const std::wstring& strText) const
    {
        for (const WCHAR ch : strText) {
            Send(WM_CHAR, ch, 1);
        }
    }

private:
    static LRESULT CALLBACK EditProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
    {
        const auto text = [lParam] { return Narrow(reinterpret_cast<PCWSTR>(lParam)); };
        if (nMessage == WM_CHAR) {
            Note("WM_CHAR " + std::to_string(wParam));
        } else if (nMessage == WM_PASTE) {
            Note("WM_PASTE");
        } else if (nMessage == EM_REPLACESEL) {
            Note("EM_REPLACESEL " + std::to_string(wParam) + ' ' + text());
        } else if (nMessage == EM_LIMITTEXT) {
            Note("EM_LIMITTEXT " + std::to_string(wParam));
        } else if (nMessage == WM_SETTEXT) {
            Note("WM_SETTEXT " + text());
        } else if (nMessage == WM_NCDESTROY) {
            Note("WM_NCDESTROY");
        }
        return CallWindowProcW(s_pfnEditProc, hwnd, nMessage, wParam, lParam);
    }

    static inline WNDPROC s_pfnEditProc = nullptr;
    HWND m_hwnd;
};

// One that takes so many digits and nothing else.
class DigitsEdit : public Edit
{
public:
    explicit DigitsEdit(UINT nLimit, DWORD dwStyle = 0) : Edit(dwStyle)
    {
        Attach(nLimit);
        Journal().clear();
    }
};

// Only this is on the clipboard.
void SetClipboard(UINT nFormat, HANDLE hData)
{
    ASSERT_TRUE(OpenClipboard(nullptr));
    ASSERT_TRUE(EmptyClipboard());
    ASSERT_NE(SetClipboardData(nFormat, hData), nullptr);
    ASSERT_TRUE(CloseClipboard());
}

void Copy(const std::wstring& strText)
{
    const size_t cb = (strText.size() + 1) * sizeof(WCHAR);
    const HGLOBAL hText = GlobalAlloc(GMEM_MOVEABLE, cb);
    std::memcpy(GlobalLock(hText), strText.c_str(), cb);
    GlobalUnlock(hText);
    SetClipboard(CF_UNICODETEXT, hText);
}

class IntegerEdit : public Test
{
};

TEST_F(IntegerEdit, IsSubclassedUnderItsOwnHandleThenLimitedThenEmptied)
{
    const Edit edit;
    const REPLACED(SetWindowSubclass) subclass;
    edit.Attach(6);
    EXPECT_EQ(subclass.Arguments(),
              std::tuple(edit.Window(), &CIntegerEdit::SubclassProc, reinterpret_cast<UINT_PTR>(edit.Window()), 0u));
    EXPECT_EQ(Journal(), (Lines{"SetWindowSubclass", "EM_LIMITTEXT 6", "WM_SETTEXT "}));
    EXPECT_EQ(edit.Text(), L"");
}

TEST_F(IntegerEdit, ThatCannotBeSubclassedEndsTheProcess)
{
    const REPLACED(SetWindowSubclass) subclass(Returns(FALSE));
    EXPECT_EQ(ExitCodeOf([] { DigitsEdit(5); }), 1u);
    ExpectBox(L"Caller()\nFailure", L"Error");
    EXPECT_EQ(Journal(), (Lines{"SetWindowSubclass", "box \"Caller()\nFailure\"", "exit 1"}));
}

TEST_F(IntegerEdit, TakesDigitsUpToItsLimitAndBackspace)
{
    const DigitsEdit ten(10);
    ten.Type(L"0123456789");
    EXPECT_EQ(ten.Text(), L"0123456789");
    const DigitsEdit five(5);
    five.Type(L"432109");
    EXPECT_EQ(five.Text(), L"43210");
    five.Type(L"\b\b\b2a\b");
    EXPECT_EQ(five.Text(), L"43");
}

TEST_F(IntegerEdit, DropsEverythingElseThatIsTyped)
{
    const DigitsEdit edit(30);
    for (const WCHAR ch : std::wstring(L" !\"#$%&'()*+,-./:;<=>?@AZ[\\]^_`az{|}~\x7F\xBD\xE4\x20AC")) {
        EXPECT_EQ(edit.Send(WM_CHAR, ch, 1), 0) << UINT{ch};
    }
    EXPECT_EQ(Journal(), Lines{});
    EXPECT_EQ(edit.Text(), L"");
}

TEST_F(IntegerEdit, LetsControlCharactersThrough)
{
    DigitsEdit(5).Type(std::wstring(L"\x08\x1F\x20\x01\x03", 5));
    EXPECT_EQ(Journal(), (Lines{"WM_CHAR 8", "WM_CHAR 31", "WM_CHAR 1", "WM_CHAR 3", "WM_NCDESTROY"}));
}

TEST_F(IntegerEdit, PastesToItsLimitAndInsertsAgainWhatStillFits)
{
    for (const DWORD dwStyle : std::vector<DWORD>{0, ES_NUMBER}) {
        SCOPED_TRACE(dwStyle);
        Copy(L"43210");
        const DigitsEdit full(5, dwStyle);
        full.Send(WM_PASTE);
        EXPECT_EQ(full.Text(), L"43210");

        Copy(L"12");
        const DigitsEdit edit(6, dwStyle);
        edit.Send(WM_PASTE);
        EXPECT_EQ(edit.Text(), L"1212");
        edit.Send(WM_PASTE);
        EXPECT_EQ(edit.Text(), L"121212");
    }
}

TEST_F(IntegerEdit, PastesTheDigitsOfAMixedTextAndThenTheTextItself)
{
    Copy(L" 1a\t2\r\n3\b");
    const DigitsEdit edit(5);
    edit.Send(WM_PASTE);
    EXPECT_EQ(Journal(), (Lines{"EM_REPLACESEL 0 123", "WM_PASTE"}));
    EXPECT_EQ(edit.Text(), L"123 1");

    Copy(L"abc");
    Journal().clear();
    edit.Send(WM_PASTE);
    EXPECT_EQ(Journal(), (Lines{"EM_REPLACESEL 0 ", "WM_PASTE"}));
}

TEST_F(IntegerEdit, PastesOverTheSelection)
{
    Copy(L"77");
    const DigitsEdit edit(4);
    edit.Type(L"1234");
    edit.Send(EM_SETSEL, 0, -1);
    edit.Send(WM_PASTE);
    EXPECT_EQ(edit.Text(), L"7777");
}

TEST_F(IntegerEdit, PastesNothingOfABitmap)
{
    SetClipboard(CF_BITMAP, CreateBitmap(4, 4, 1, 1, nullptr));
    const DigitsEdit edit(5);
    edit.Type(L"4");
    const REPLACED(OpenClipboard) open(Never());
    EXPECT_EQ(edit.Send(WM_PASTE), 0);
    EXPECT_EQ(edit.Text(), L"4");
    EXPECT_EQ(Journal(), Lines{"WM_CHAR 52"});
}

TEST_F(IntegerEdit, AsksForTextBeforeItOpensTheClipboard)
{
    Copy(L"12");
    const DigitsEdit edit(6);
    const REPLACED(IsClipboardFormatAvailable) available;
    const REPLACED(OpenClipboard) open;
    const REPLACED(GetClipboardData) data;
    const REPLACED(GlobalLock) lock;
    const REPLACED(GlobalUnlock) unlock;
    const REPLACED(CloseClipboard) close;
    edit.Send(WM_PASTE);
    EXPECT_EQ(available.Arg<0>(), 13u);
    EXPECT_EQ(open.Arg<0>(), edit.Window());
    EXPECT_EQ(data.Arg<0>(), 13u);
    EXPECT_EQ(unlock.Arg<0>(), lock.Arg<0>());
    EXPECT_EQ(Journal(), (Lines{"IsClipboardFormatAvailable", "OpenClipboard", "GetClipboardData", "GlobalLock",
                                "EM_REPLACESEL 0 12", "GlobalUnlock", "CloseClipboard", "WM_PASTE"}));
    EXPECT_EQ(edit.Text(), L"1212");
}

TEST_F(IntegerEdit, PastesNothingWhenTheClipboardCannotBeOpened)
{
    Copy(L"12");
    const DigitsEdit edit(5);
    const REPLACED(OpenClipboard) open(Returns(FALSE));
    const REPLACED(CloseClipboard) close(Never());
    EXPECT_EQ(edit.Send(WM_PASTE), 0);
    EXPECT_EQ(edit.Text(), L"");
    EXPECT_EQ(Journal(), Lines{"OpenClipboard"});
}

TEST_F(IntegerEdit, LeavesThePasteToTheControlWhenTheDataCannotBeHad)
{
    Copy(L"12");
    const REPLACED(CloseClipboard) close;
    {
        const DigitsEdit edit(5);
        const REPLACED(GlobalLock) lock(Returns(PVOID(nullptr)));
        const REPLACED(GlobalUnlock) unlock(Never());
        edit.Send(WM_PASTE);
        EXPECT_EQ(Journal(), (Lines{"GlobalLock", "CloseClipboard", "WM_PASTE"}));
        EXPECT_EQ(edit.Text(), L"12");
    }
    const DigitsEdit edit(5);
    const REPLACED(GetClipboardData) data(Returns(HANDLE(nullptr)));
    const REPLACED(GlobalLock) lock(Never());
    edit.Send(WM_PASTE);
    EXPECT_EQ(Journal(), (Lines{"GetClipboardData", "CloseClipboard", "WM_PASTE"}));
    EXPECT_EQ(edit.Text(), L"12");
}

TEST_F(IntegerEdit, IsNoneAnyMoreBeforeItsControlIsDestroyed)
{
    const REPLACED(RemoveWindowSubclass) remove;
    HWND hwnd = nullptr;
    {
        const DigitsEdit edit(5);
        hwnd = edit.Window();
    }
    EXPECT_EQ(remove.Arguments(), std::tuple(hwnd, &CIntegerEdit::SubclassProc, reinterpret_cast<UINT_PTR>(hwnd)));
    EXPECT_EQ(Journal(), (Lines{"RemoveWindowSubclass", "WM_NCDESTROY"}));
}

TEST_F(IntegerEdit, IsRemovedUnderTheIdUnderWhichItWasInstalled)
{
    const REPLACED(RemoveWindowSubclass) remove;
    {
        const Edit edit;
        SetWindowSubclass(edit.Window(), CIntegerEdit::SubclassProc, 4711, 5);
    }
    EXPECT_EQ(remove.Arg<2>(), 4711u);
}

} // namespace
