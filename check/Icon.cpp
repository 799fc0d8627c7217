// The wizard's icon.
#include "check/Picture.h"
#include "check/Walk.h"
#include "driver/Reading.h"

#include <cstdlib>
#include <memory>

namespace {

// Of 255, on average: another way to draw an icon, or to make it smaller, changes it by so much at most.
constexpr int kSlightly = 12;

using CIconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, decltype([](HICON hIcon) { DestroyIcon(hIcon); })>;

// The one in the program's resources.
CIconHandle OwnIcon(const CPath& program, int nSize)
{
    const HANDLE hIcon =
        LoadImageW(OpenProgram(program).get(), MAKEINTRESOURCEW(IDI_APPLICATION_ICON), IMAGE_ICON, nSize, nSize, 0);
    return CIconHandle(static_cast<HICON>(hIcon));
}

int Difference(COLORREF one, COLORREF other)
{
    return (std::abs(GetRValue(one) - GetRValue(other)) + std::abs(GetGValue(one) - GetGValue(other)) +
            std::abs(GetBValue(one) - GetBValue(other))) /
           3;
}

// A pixel of an icon that looks the same on any ground.
struct SOLID_PIXEL
{
    size_t x;
    size_t y;
    COLORREF color;
};

std::vector<SOLID_PIXEL> SolidPixels(HICON hIcon, int nEdge)
{
    const std::vector<COLORREF> onBlack = IconColors(hIcon, nEdge, RGB(0, 0, 0));
    const std::vector<COLORREF> onWhite = IconColors(hIcon, nEdge, RGB(255, 255, 255));
    const auto nWidth = static_cast<size_t>(nEdge);
    std::vector<SOLID_PIXEL> pixels;
    for (size_t n = 0; n < onBlack.size(); ++n) {
        if (onBlack[n] == onWhite[n]) {
            pixels.push_back({n % nWidth, n / nWidth, onBlack[n]});
        }
    }
    return pixels;
}

// Whether they stand at that place of a picture of that width.
bool AreAt(const std::vector<SOLID_PIXEL>& pixels, const std::vector<COLORREF>& picture, size_t nFirst, size_t nWidth)
{
    int nDifference = 0;
    for (const SOLID_PIXEL& pixel : pixels) {
        nDifference += Difference(pixel.color, picture[nFirst + (pixel.y * nWidth) + pixel.x]);
    }
    return !pixels.empty() && nDifference <= kSlightly * static_cast<int>(pixels.size());
}

bool AreSeen(const std::vector<SOLID_PIXEL>& pixels, size_t nEdge, const RECT& rect)
{
    const std::vector<COLORREF> screen = ScreenColors(rect);
    const auto nWidth = static_cast<size_t>(rect.right - rect.left);
    for (size_t n = 0; n < screen.size(); ++n) {
        const bool bHasRoom = n % nWidth + nEdge <= nWidth && n / nWidth + nEdge <= screen.size() / nWidth;
        if (bHasRoom && AreAt(pixels, screen, n, nWidth)) {
            return true;
        }
    }
    return false;
}

} // namespace

void LookAtIcons(const CWalk& walk)
{
    const CHECK& check = walk.Check();
    const PART frame = walk.Rest().frame.window;
    const int nLarge = GetSystemMetrics(SM_CXICON);
    DWORD_PTR nIcon = Ask(frame.hwnd, WM_GETICON, ICON_BIG, 0).value_or(0);
    nIcon = nIcon != 0 ? nIcon : GetClassLongPtrW(frame.hwnd, GCLP_HICON);
    const std::vector<COLORREF> shown = IconColors(reinterpret_cast<HICON>(nIcon), nLarge, RGB(0, 0, 0));
    if (nIcon != 0 && shown.empty()) {
        check.answers.NotTried(L"frame.icon", L"the icon of another program cannot be drawn here");
    } else {
        const std::vector<SOLID_PIXEL> own = SolidPixels(OwnIcon(check.program, nLarge).get(), nLarge);
        const bool bSame = !shown.empty() && AreAt(own, shown, 0, static_cast<size_t>(nLarge));
        check.answers.Either(L"frame.icon", bSame, L"the program's icon", nIcon != 0 ? L"another icon" : L"none",
                             frame.hwnd);
    }
    // Where the arrow, the icon and the title are.
    const int nSmall = GetSystemMetrics(SM_CXSMICON);
    const RECT edge = {frame.rect.left, frame.rect.top, frame.rect.right, frame.rect.top + (4 * nSmall)};
    const bool bSeen =
        AreSeen(SolidPixels(OwnIcon(check.program, nSmall).get(), nSmall), static_cast<size_t>(nSmall), edge);
    check.answers.Either(L"frame.icon-small", bSeen, L"the program's icon", L"no such icon", frame.hwnd);
}
