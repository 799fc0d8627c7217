// The dialog template of a wizard page.
#pragma once

#include <windows.h>

#include <vector>

// A copy of the template from the resources of hInstance, which has to be an extended one (DIALOGEX), for a hidden
// child of the frame that the keyboard can walk into: without what belongs to a window of its own. Empty when there is
// none.
std::vector<BYTE> LoadPageTemplate(HINSTANCE hInstance, PCWSTR pszTemplate);

// The size of such a page in pixels; a template gives it in units of its font.
SIZE PageSize(std::vector<BYTE> dialogTemplate);
