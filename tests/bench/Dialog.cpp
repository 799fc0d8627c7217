// The least program that shows a window: an empty dialog, which stays until it is closed.
//
//     bench-dialog TITLE
#include <windows.h>

namespace {

INT_PTR CALLBACK DialogProc(HWND hwndDialog, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_INITDIALOG:
        SetWindowTextW(hwndDialog, reinterpret_cast<PCWSTR>(lParam));
        return TRUE;
    case WM_COMMAND:
        return LOWORD(wParam) == IDCANCEL && EndDialog(hwndDialog, 0);
    default:
        return FALSE;
    }
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    struct DIALOG
    {
        DLGTEMPLATE header;
        WORD wMenu;
        WORD wClass;
        WORD wTitle;
    };
    const DIALOG dialog = {{WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 0, 0, 10, 10, 200, 100}, 0, 0, 0};
    const auto lTitle = reinterpret_cast<LPARAM>(argc > 1 ? argv[1] : L"");
    DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &dialog.header, nullptr, DialogProc, lTitle);
    return 0;
}
