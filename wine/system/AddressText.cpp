#include "system/AddressText.h"

#include <algorithm>

std::array<std::wstring, 4> SplitAddress(std::wstring_view szAddress)
{
    std::array<std::wstring, 4> fields;
    for (std::wstring& szField : fields) {
        const size_t nEnd = std::min(szAddress.find(L'.'), szAddress.size());
        unsigned nValue = 0;
        for (const wchar_t ch : szAddress.substr(0, nEnd)) {
            if (ch >= L'0' && ch <= L'9') {
                nValue = std::min(255U, (nValue * 10) + static_cast<unsigned>(ch - L'0'));
                szField = std::to_wstring(nValue);
            }
        }
        szAddress.remove_prefix(std::min(nEnd + 1, szAddress.size()));
    }
    return fields;
}
