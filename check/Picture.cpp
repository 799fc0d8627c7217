#include "check/Picture.h"

#include "frame/Owned.h"

#include <miniz.h>
#include <wincrypt.h>

#include <memory>
#include <span>

namespace {

// The pixels of a picture of that size once something has drawn it. Empty when it did not.
template<typename DRAW>
std::vector<COLORREF> Drawn(int nWidth, int nHeight, DRAW draw)
{
    if (nWidth <= 0 || nHeight <= 0) {
        return {};
    }
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, nWidth, -nHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pPixels = nullptr;
    const CBitmapHandle hBitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pPixels, nullptr, 0));
    if (!hBitmap) {
        return {};
    }
    const CMemoryDc hdc;
    const CSelection selection(hdc, hBitmap.get());
    if (!draw(hdc)) {
        return {};
    }
    GdiFlush();
    std::vector<COLORREF> colors;
    const auto* const pQuads = static_cast<const RGBQUAD*>(pPixels);
    for (const RGBQUAD& quad : std::span(pQuads, static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight))) {
        colors.push_back(RGB(quad.rgbRed, quad.rgbGreen, quad.rgbBlue));
    }
    return colors;
}

std::string ToBase64(const void* p, size_t cb)
{
    const auto cbBytes = static_cast<DWORD>(cb);
    // Four characters for three bytes, and the end.
    DWORD cch = ((cbBytes + 2) / 3 * 4) + 1;
    std::string text(cch, '\0');
    CryptBinaryToStringA(static_cast<const BYTE*>(p), cbBytes, CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, text.data(),
                         &cch);
    text.resize(cch);
    return text;
}

} // namespace

std::vector<COLORREF> ScreenColors(const RECT& rect)
{
    const int nWidth = rect.right - rect.left;
    const int nHeight = rect.bottom - rect.top;
    return Drawn(nWidth, nHeight, [&](HDC hdc) {
        const HDC hdcScreen = GetDC(nullptr);
        const BOOL bCopied = BitBlt(hdc, 0, 0, nWidth, nHeight, hdcScreen, rect.left, rect.top, SRCCOPY);
        ReleaseDC(nullptr, hdcScreen);
        return bCopied;
    });
}

std::vector<COLORREF> IconColors(HICON hIcon, int nSize, COLORREF ground)
{
    return Drawn(nSize, nSize, [&](HDC hdc) {
        const CBrushHandle hBrush(CreateSolidBrush(ground));
        return DrawIconEx(hdc, 0, 0, hIcon, nSize, nSize, 0, hBrush.get(), DI_NORMAL);
    });
}

std::string TakePicture(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    std::vector<COLORREF> colors = ScreenColors(rect);
    if (colors.empty()) {
        return {};
    }
    for (COLORREF& color : colors) {
        color |= 0xFF000000; // opaque
    }
    size_t cb = 0;
    const std::unique_ptr<void, decltype(&mz_free)> png(
        tdefl_write_image_to_png_file_in_memory(colors.data(), rect.right - rect.left, rect.bottom - rect.top, 4, &cb),
        &mz_free);
    return png ? ToBase64(png.get(), cb) : std::string();
}
