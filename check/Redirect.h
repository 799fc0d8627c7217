// Copies of the program of which one thing is different: a function that it calls is another one. What the check finds
// out with them it cannot bring about otherwise.
#pragma once

#include "check/Folders.h"

// Makes a copy, or of the program itself one, that calls another function of kernel32, of a name that is not longer,
// instead of the one that it links. Throws CLost when the program links no such function.
void CopyRedirected(const CPath& program, const CPath& copy, const std::string& function, const std::string& other);

// The flags by which the program asks the loader where to look for what it links; the copy asks for nothing.
unsigned DependentLoadFlags(const CPath& program);
void ClearDependentLoadFlags(const CPath& program);

// The libraries that the program links.
std::vector<std::wstring> LinkedLibraries(const CPath& program);
