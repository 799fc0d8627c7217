// The wizard's icon.
#include "check/Picture.h"
#include "check/Walk.h"
#include "driver/Reading.h"

#include <cstdlib>
#include <memory>

namespace {

// Of 255, on average: another way to draw an icon, or to make it smaller, changes it by so much at most.
constexpr int kSlightly = 12;

constexpr COLORREF kBlack = RGB(0, 0, 0);
constexpr COLORREF kWhite = RGB(255, 255, 255);

struct ICON_DELETER
{
    void operator()(HICON hIcon) const
    {
        DestroyIcon(hIcon);
    }
};

using CIconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, ICON_DELETER>;

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

// An icon as it looks on two grounds: where it is the same on both, the ground is not seen.
struct ICON_LOOK
{
    int nSize;
    std::vector<COLORREF> onBlack;
    std::vector<COLORREF> onWhite;

    ICON_LOOK(HICON hIcon, int nEdge)
        : nSize(nEdge), onBlack(IconColors(hIcon, nEdge, kBlack)), onWhite(IconColors(hIcon, nEdge, kWhite))
    {
    }

    // Whether it stands at that place of a picture of that width.
    bool IsAt(const std::vector<COLORREF>& picture, size_t nFirst, size_t nWidth) const
    {
        int nDifference = 0;
        int nPixels = 0;
        for (size_t n = 0; n < onBlack.size(); ++n) {
            if (onBlack[n] == onWhite[n]) {
                const auto nEdge = static_cast<size_t>(nSize);
                nDifference += Difference(onBlack[n], picture[nFirst + (n / nEdge * nWidth) + (n % nEdge)]);
                ++nPixels;
            }
        }
        return nPixels > 0 && nDifference <= kSlightly * nPixels;
    }
};

bool IsSeen(const ICON_LOOK& icon, const RECT& rect)
{
    const std::vector<COLORREF> screen = ScreenColors(rect);
    const auto nWidth = static_cast<size_t>(rect.right - rect.left);
    for (int y = 0; y + icon.nSize <= rect.bottom - rect.top; ++y) {
        for (int x = 0; x + icon.nSize <= rect.right - rect.left; ++x) {
            if (!screen.empty() &&
                icon.IsAt(screen, (static_cast<size_t>(y) * nWidth) + static_cast<size_t>(x), nWidth)) {
                return true;
            }
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
    const ICON_LOOK shown(reinterpret_cast<HICON>(nIcon), nLarge);
    const ICON_LOOK own(OwnIcon(check.program, nLarge).get(), nLarge);
    if (nIcon != 0 && shown.onBlack.empty()) {
        check.answers.NotTried(L"frame.icon", L"the icon of another program cannot be drawn here");
    } else {
        const bool bSame = !shown.onBlack.empty() && own.IsAt(shown.onBlack, 0, static_cast<size_t>(nLarge));
        check.answers.Either(L"frame.icon", bSame, L"the program's icon", nIcon != 0 ? L"another icon" : L"none",
                             frame.hwnd);
    }
    // Where the arrow, the icon and the title are.
    const int nSmall = GetSystemMetrics(SM_CXSMICON);
    const RECT edge = {frame.rect.left, frame.rect.top, frame.rect.right, frame.rect.top + (4 * nSmall)};
    const bool bSeen = IsSeen({OwnIcon(check.program, nSmall).get(), nSmall}, edge);
    check.answers.Either(L"frame.icon-small", bSeen, L"the program's icon", L"no such icon", frame.hwnd);
}
