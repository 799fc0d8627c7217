#include "frame/ResourceText.h"

std::wstring ResourceText(HINSTANCE hInstance, PCWSTR psz)
{
    if (psz == nullptr) {
        return {};
    }
    if (!IS_INTRESOURCE(psz)) {
        return psz;
    }
    // A capacity of 0 asks for a pointer to the resource itself, which has no terminator.
    PCWSTR pszStored = nullptr;
    const UINT nId = LOWORD(reinterpret_cast<UINT_PTR>(psz));
    const int nLength = LoadStringW(hInstance, nId, reinterpret_cast<PWSTR>(&pszStored), 0);
    return nLength > 0 ? std::wstring(pszStored, static_cast<size_t>(nLength)) : std::wstring();
}
