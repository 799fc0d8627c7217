// A wizard of as many pages as the installer has, with nothing on them but an empty text by which a page is told. It
// does nothing: what going through it takes is the system's and the frame's.
//
//     bench-pages TITLE
#include "tests/driver/Pages.h"
#include "wine/frame/PropertySheet.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int kTemplate = 1;
constexpr int kTemplateBody = 1;

INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM /*wParam*/, LPARAM lParam)
{
    if (nMessage == WM_INITDIALOG) {
        const LPARAM lBody = reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam;
        SetWindowLongPtrW(GetDlgItem(hwndPage, kTemplateBody), GWLP_ID, lBody);
        SetWindowLongPtrW(hwndPage, GWLP_USERDATA, lBody);
        return TRUE;
    }
    if (nMessage == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == PSN_SETACTIVE) {
        const bool bLast = GetWindowLongPtrW(hwndPage, GWLP_USERDATA) == IDC_FINISHED_BODY;
        PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, bLast ? PSWIZB_FINISH : PSWIZB_NEXT,
                     PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_FINISH | PSWIZB_CANCEL);
    }
    return FALSE;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    const HINSTANCE hInstance = GetModuleHandleW(nullptr);
    PROPSHEETPAGEW pages[std::size(kPages)] = {};
    std::ranges::transform(kPages, pages, [hInstance](const PAGE& page) {
        PROPSHEETPAGEW record = {};
        record.dwSize = sizeof(record);
        record.hInstance = hInstance;
        record.pszTemplate = MAKEINTRESOURCEW(kTemplate);
        record.pfnDlgProc = DialogProc;
        record.lParam = page.nBodyId;
        return record;
    });
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_AEROWIZARD | PSH_PROPSHEETPAGE;
    header.hwndParent = GetDesktopWindow();
    header.hInstance = hInstance;
    header.pszCaption = argc > 1 ? argv[1] : L"";
    header.nPages = static_cast<UINT>(std::size(pages));
    header.ppsp = pages;
    return PropertySheetW(&header) == -1 ? 1 : 0;
}
