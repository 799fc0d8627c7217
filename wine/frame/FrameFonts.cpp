#include "frame/FrameFonts.h"

namespace {

CFontHandle MakeFont(PCWSTR pszFace, int nPoints, UINT nDpi)
{
    LOGFONTW font = {};
    font.lfHeight = -MulDiv(nPoints, static_cast<int>(nDpi), 72);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = CLEARTYPE_QUALITY;
    lstrcpynW(font.lfFaceName, pszFace, LF_FACESIZE);
    return CFontHandle(CreateFontIndirectW(&font));
}

// Segoe UI; where it is not installed the dialog font, which always is.
CFontHandle MakeFrameFont(int nPoints, UINT nDpi)
{
    constexpr PCWSTR kFace = L"Segoe UI";
    CFontHandle hFont = MakeFont(kFace, nPoints, nDpi);
    WCHAR szFound[LF_FACESIZE] = {};
    {
        const CMemoryDc hdc;
        const CSelection selection(hdc, hFont.get());
        GetTextFaceW(hdc, LF_FACESIZE, szFound);
    }
    return lstrcmpiW(szFound, kFace) == 0 ? std::move(hFont) : MakeFont(L"MS Shell Dlg", nPoints, nDpi);
}

} // namespace

int Scale(int nPixels, UINT nDpi)
{
    return MulDiv(nPixels, static_cast<int>(nDpi), USER_DEFAULT_SCREEN_DPI);
}

SIZE MeasureText(HFONT hFont, PCWSTR pszText)
{
    const CMemoryDc hdc;
    const CSelection selection(hdc, hFont);
    RECT rect = {};
    DrawTextW(hdc, pszText, -1, &rect, DT_CALCRECT | DT_SINGLELINE);
    return {rect.right, rect.bottom};
}

CFrameFonts::CFrameFonts(UINT nDpi) : m_text(MakeFrameFont(9, nDpi)), m_headerTitle(MakeFrameFont(12, nDpi)) {}
