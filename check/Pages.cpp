#include "check/Pages.h"

#include "check/Text.h"

#include <format>
#include <ranges>

std::wstring PageClaim(int nPage, PCWSTR pszWhat)
{
    return std::format(L"page-{:02}.{}", nPage, pszWhat);
}

std::wstring ButtonNames(UINT nButtons)
{
    const auto IsAmong = [nButtons](const FRAME_BUTTON& button) { return (nButtons & button.nButton) != 0; };
    return Joined(kFrameButtons | std::views::filter(IsAmong), L", ", L"none", &FRAME_BUTTON::pszText);
}
