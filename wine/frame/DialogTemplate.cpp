#include "frame/DialogTemplate.h"

namespace {

// The fixed part of an extended template.
#pragma pack(push, 2)
struct EXTENDED_HEADER
{
    WORD nVersion;
    WORD nSignature;
    DWORD dwHelpId;
    DWORD dwExStyle;
    DWORD dwStyle;
    WORD nItems;
    short x, y, cx, cy;
};
#pragma pack(pop)
static_assert(sizeof(EXTENDED_HEADER) == 26);

EXTENDED_HEADER& HeaderOf(std::vector<BYTE>& dialogTemplate)
{
    return *reinterpret_cast<EXTENDED_HEADER*>(dialogTemplate.data());
}

} // namespace

std::vector<BYTE> LoadPageTemplate(HINSTANCE hInstance, PCWSTR pszTemplate)
{
    const HRSRC hResource = FindResourceW(hInstance, pszTemplate, RT_DIALOG);
    if (hResource == nullptr) {
        return {};
    }
    const auto* const pBytes = static_cast<const BYTE*>(LockResource(LoadResource(hInstance, hResource)));
    std::vector<BYTE> dialogTemplate(pBytes, pBytes + SizeofResource(hInstance, hResource));
    EXTENDED_HEADER& header = HeaderOf(dialogTemplate);
    header.dwStyle = (header.dwStyle & DS_SHELLFONT) | WS_CHILD | DS_CONTROL;
    header.dwExStyle = WS_EX_CONTROLPARENT;
    return dialogTemplate;
}

SIZE PageSize(std::vector<BYTE> dialogTemplate)
{
    EXTENDED_HEADER& header = HeaderOf(dialogTemplate);
    header.dwStyle = (header.dwStyle & DS_SHELLFONT) | WS_POPUP;
    header.nItems = 0;
    const auto* const pTemplate = reinterpret_cast<const DLGTEMPLATE*>(dialogTemplate.data());
    const HWND hwnd = CreateDialogIndirectParamW(GetModuleHandleW(nullptr), pTemplate, nullptr, nullptr, 0);
    RECT rect = {};
    GetClientRect(hwnd, &rect);
    DestroyWindow(hwnd);
    return {rect.right, rect.bottom};
}
