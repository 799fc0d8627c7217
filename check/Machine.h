// The computer that the check runs on, and whether it can run there.
#pragma once

#include <string>
#include <utility>
#include <vector>

// Names and values for the report, none of which tells whose computer it is.
std::vector<std::pair<std::wstring, std::wstring>> DescribeMachine();

// Whether the user has chosen one of the themes with a high contrast.
bool IsHighContrast();

// Why the check must not run now; empty when it may.
std::wstring ReasonToRefuse();

// The installer's, and where it is to be found while another one runs.
constexpr int kAdbServerPort = 5037;
