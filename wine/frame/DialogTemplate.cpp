#include "frame/DialogTemplate.h"

#include "frame/Owned.h"

#include <cstring>

namespace {

// The fixed part of an extended template; what follows it has no fixed place.
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
static_assert(sizeof(DLGTEMPLATE) == 18);

constexpr DWORD kOwnWindowStyles = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX |
                                   WS_MAXIMIZEBOX | WS_VISIBLE | WS_DISABLED | DS_MODALFRAME | DS_ABSALIGN | DS_CENTER |
                                   DS_CENTERMOUSE | DS_SETFOREGROUND | DS_SYSMODAL;
constexpr DWORD kOwnWindowExStyles = WS_EX_DLGMODALFRAME | WS_EX_WINDOWEDGE | WS_EX_TOPMOST | WS_EX_TOOLWINDOW;

bool IsExtended(const BYTE* pBytes)
{
    const auto* const pHeader = reinterpret_cast<const EXTENDED_HEADER*>(pBytes);
    return pHeader->nVersion == 1 && pHeader->nSignature == 0xFFFF;
}

// Walks the parts of a template that have no fixed length.
class CReader
{
public:
    CReader(const std::vector<BYTE>& bytes, size_t nStart) : m_bytes(bytes), m_nAt(nStart) {}

    WORD Word()
    {
        WORD n = 0;
        if (m_nAt + sizeof(n) <= m_bytes.size()) {
            memcpy(&n, m_bytes.data() + m_nAt, sizeof(n));
        }
        m_nAt += sizeof(n);
        return n;
    }

    // A menu, a class, a title: a string, or 0xFFFF and an ordinal.
    void SkipName()
    {
        WORD n = Word();
        if (n == 0xFFFF) {
            Word();
            return;
        }
        while (n != 0) {
            n = Word();
        }
    }

    void Text(PWSTR psz, int nCapacity)
    {
        int nLength = 0;
        for (WORD ch = Word(); ch != 0; ch = Word()) {
            if (nLength < nCapacity - 1) {
                psz[nLength++] = ch;
            }
        }
        psz[nLength] = L'\0';
    }

private:
    const std::vector<BYTE>& m_bytes;
    size_t m_nAt;
};

LOGFONTW FontOf(const std::vector<BYTE>& bytes, bool bExtended, DWORD dwStyle)
{
    LOGFONTW font = {};
    if ((dwStyle & DS_SETFONT) == 0) {
        GetObjectW(GetStockObject(SYSTEM_FONT), sizeof(font), &font);
        return font;
    }
    CReader reader(bytes, bExtended ? sizeof(EXTENDED_HEADER) : sizeof(DLGTEMPLATE));
    reader.SkipName(); // menu
    reader.SkipName(); // class
    reader.SkipName(); // title
    const int nPoints = reader.Word();
    font.lfHeight = -MulDiv(nPoints, static_cast<int>(GetDpiForSystem()), 72);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    if (bExtended) {
        font.lfWeight = reader.Word();
        const WORD wItalicAndCharSet = reader.Word();
        font.lfItalic = LOBYTE(wItalicAndCharSet);
        font.lfCharSet = HIBYTE(wItalicAndCharSet);
    }
    reader.Text(font.lfFaceName, LF_FACESIZE);
    return font;
}

// Pixels of four horizontal and eight vertical dialog units: the average width and the height of a
// character.
SIZE BaseUnits(const LOGFONTW& font)
{
    constexpr WCHAR szLetters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int nLetters = ARRAYSIZE(szLetters) - 1;
    const CFontHandle hFont(CreateFontIndirectW(&font));
    const CMemoryDc hdc;
    const CSelection selection(hdc, hFont.get());
    SIZE extent = {};
    TEXTMETRICW metric = {};
    GetTextExtentPoint32W(hdc, szLetters, nLetters, &extent);
    GetTextMetricsW(hdc, &metric);
    return {(extent.cx / (nLetters / 2) + 1) / 2, metric.tmHeight};
}

} // namespace

std::optional<CDialogTemplate> CDialogTemplate::Load(HINSTANCE hInstance, PCWSTR pszTemplate)
{
    const HRSRC hResource = FindResourceW(hInstance, pszTemplate, RT_DIALOG);
    if (hResource == nullptr) {
        return std::nullopt;
    }
    const HGLOBAL hLoaded = LoadResource(hInstance, hResource);
    const auto* const pBytes = static_cast<const BYTE*>(LockResource(hLoaded));
    const DWORD cb = SizeofResource(hInstance, hResource);
    if (pBytes == nullptr || cb < sizeof(EXTENDED_HEADER)) {
        SetLastError(ERROR_INVALID_DATA);
        return std::nullopt;
    }
    return CDialogTemplate(std::vector<BYTE>(pBytes, pBytes + cb));
}

CDialogTemplate::CDialogTemplate(std::vector<BYTE> bytes) : m_bytes(std::move(bytes))
{
    const bool bExtended = IsExtended(m_bytes.data());
    auto* const pExtended = reinterpret_cast<EXTENDED_HEADER*>(m_bytes.data());
    auto* const pPlain = reinterpret_cast<DLGTEMPLATE*>(m_bytes.data());
    DWORD dwStyle = bExtended ? DWORD{pExtended->dwStyle} : DWORD{pPlain->style};
    DWORD dwExStyle = bExtended ? DWORD{pExtended->dwExStyle} : DWORD{pPlain->dwExtendedStyle};

    const SIZE base = BaseUnits(FontOf(m_bytes, bExtended, dwStyle));
    m_size.cx = MulDiv(bExtended ? int{pExtended->cx} : int{pPlain->cx}, base.cx, 4);
    m_size.cy = MulDiv(bExtended ? int{pExtended->cy} : int{pPlain->cy}, base.cy, 8);

    dwStyle = (dwStyle & ~kOwnWindowStyles) | WS_CHILD | DS_CONTROL;
    dwExStyle = (dwExStyle & ~kOwnWindowExStyles) | WS_EX_CONTROLPARENT;
    if (bExtended) {
        pExtended->dwStyle = dwStyle;
        pExtended->dwExStyle = dwExStyle;
    } else {
        pPlain->style = dwStyle;
        pPlain->dwExtendedStyle = dwExStyle;
    }
}
