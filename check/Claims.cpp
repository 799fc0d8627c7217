#include "check/Claims.h"

#include "check/Folders.h"
#include "check/resource.h"
#include "kit/Request.h"

#include <regex>

namespace {

std::vector<CLAIM> ReadClaims()
{
    const std::wstring szPage = FromUtf8(ResourceBytes(nullptr, IDR_CLAIMS));
    // The last two cells, what holds the claim elsewhere, are not for whoever runs the check.
    const std::wregex row(LR"(\| `([\w.-]+)` \| ([^|\n]+) \| ([^|\n]+) \| [^|\n]+ \| [^|\n]+ \|\n)");
    std::vector<CLAIM> claims;
    for (std::wsregex_iterator found(szPage.begin(), szPage.end(), row); found != std::wsregex_iterator(); ++found) {
        claims.push_back({found->str(1), found->str(2), found->str(3)});
    }
    return claims;
}

} // namespace

const std::vector<CLAIM>& AllClaims()
{
    static const std::vector<CLAIM> s_claims = ReadClaims();
    return s_claims;
}
