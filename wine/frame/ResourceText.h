// Texts that a property sheet's records give as a string or as the id of one in the string table.
#pragma once

#include <windows.h>

#include <string>

// The text that psz means in the resources of hInstance; empty where there is none.
std::wstring ResourceText(HINSTANCE hInstance, PCWSTR psz);
