// How the claims name the wizard's pages and its buttons.
#pragma once

#include "driver/Pages.h"

#include <string>

// "page-05.title" for page 5 and "title".
std::wstring PageClaim(int nPage, PCWSTR pszWhat);

// "Back, Next, Cancel".
std::wstring ButtonNames(UINT nButtons);
