// Stands in for the platform's header of the same name.
#pragma once

#include <windows.h>

int _wmkdir(PCWSTR pszPath);
