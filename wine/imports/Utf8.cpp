#include "imports/Utf8.h"

#include <windows.h>

std::string ToUtf8(std::wstring_view szText)
{
    std::string utf8(szText.size() * 3, '\0');
    utf8.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, szText.data(), static_cast<int>(szText.size()),
                                                        utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}
