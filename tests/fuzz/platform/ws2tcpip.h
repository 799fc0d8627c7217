// Stands in for the platform's header of the same name.
#pragma once

#include <winsock2.h>

PCWSTR InetNtopW(INT nFamily, const void* pAddress, PWSTR pszAddress, size_t cchAddress);
