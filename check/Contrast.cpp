#include "check/Contrast.h"

#include "check/Picture.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

// The light of a channel of sRGB, from 0 to 1.
double Linear(BYTE nChannel)
{
    const double c = nChannel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

// How bright a color is to the eye, from 0, black, to 1, white.
double RelativeLuminance(COLORREF color)
{
    return (0.2126 * Linear(GetRValue(color))) + (0.7152 * Linear(GetGValue(color))) +
           (0.0722 * Linear(GetBValue(color)));
}

} // namespace

double ContrastRatio(COLORREF one, COLORREF other)
{
    const auto [darker, lighter] = std::minmax({RelativeLuminance(one), RelativeLuminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

double ContrastOnScreen(const RECT& rect)
{
    std::map<COLORREF, size_t> colors;
    for (const COLORREF color : ScreenColors(rect)) {
        ++colors[color];
    }
    const auto ground = std::ranges::max_element(colors, {}, [](const auto& item) { return item.second; });
    double highest = 1;
    for (const auto& [color, nPixels] : colors) {
        highest = std::max(highest, ContrastRatio(color, ground->first));
    }
    return highest;
}
