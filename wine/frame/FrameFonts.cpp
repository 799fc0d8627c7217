#include "frame/FrameFonts.h"

#include <algorithm>
#include <iterator>

namespace {

// In order of preference; the dialog font always exists.
constexpr PCWSTR kFaces[] = {L"Segoe UI", L"MS Shell Dlg"};

int CALLBACK NoteFont(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM lParam)
{
    *reinterpret_cast<bool*>(lParam) = true;
    return 0;
}

bool IsInstalled(PCWSTR pszFace)
{
    const CMemoryDc hdc;
    LOGFONTW font = {};
    font.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(font.lfFaceName, pszFace, LF_FACESIZE);
    bool bFound = false;
    EnumFontFamiliesExW(hdc, &font, NoteFont, reinterpret_cast<LPARAM>(&bFound), 0);
    return bFound;
}

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

CFrameFonts::CFrameFonts(UINT nDpi)
{
    const auto* const pFound = std::find_if(std::begin(kFaces), std::end(kFaces), IsInstalled);
    const PCWSTR pszFace = pFound == std::end(kFaces) ? kFaces[std::size(kFaces) - 1] : *pFound;
    m_text = MakeFont(pszFace, 9, nDpi);
    m_headerTitle = MakeFont(pszFace, 12, nDpi);
}
