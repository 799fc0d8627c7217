#include "check/Picture.h"

#include "frame/Owned.h"

#include <miniz.h>
#include <wincrypt.h>

#include <algorithm>
#include <memory>

namespace {

// Blue, green, red and a byte more for each pixel, from the top.
std::string Copy(const RECT& rect)
{
    const int nWidth = rect.right - rect.left;
    const int nHeight = rect.bottom - rect.top;
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
    const HDC hdcScreen = GetDC(nullptr);
    {
        const CMemoryDc hdc(hdcScreen);
        const CSelection selection(hdc, hBitmap.get());
        BitBlt(hdc, 0, 0, nWidth, nHeight, hdcScreen, rect.left, rect.top, SRCCOPY);
        GdiFlush();
    }
    ReleaseDC(nullptr, hdcScreen);
    return {static_cast<const char*>(pPixels), static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight) * 4};
}

std::string ToBase64(const void* p, size_t cb)
{
    const auto cbBytes = static_cast<DWORD>(cb);
    DWORD cch = 0;
    CryptBinaryToStringA(static_cast<const BYTE*>(p), cbBytes, CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, nullptr,
                         &cch);
    std::string text(cch, '\0');
    CryptBinaryToStringA(static_cast<const BYTE*>(p), cbBytes, CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, text.data(),
                         &cch);
    text.resize(cch);
    return text;
}

} // namespace

std::string ScreenPixels(const RECT& rect)
{
    return Copy(rect);
}

std::string TakePicture(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    const std::string pixels = Copy(rect);
    std::string colors;
    colors.reserve(pixels.size() / 4 * 3);
    for (size_t n = 0; n + 3 < pixels.size(); n += 4) {
        colors += {pixels[n + 2], pixels[n + 1], pixels[n]};
    }
    size_t cb = 0;
    const std::unique_ptr<void, decltype(&mz_free)> png(
        tdefl_write_image_to_png_file_in_memory(colors.data(), rect.right - rect.left, rect.bottom - rect.top, 3, &cb),
        &mz_free);
    return png ? ToBase64(png.get(), cb) : std::string();
}
