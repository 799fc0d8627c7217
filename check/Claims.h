// Everything that the check looks at: the rows of docs/windows-check.md, which this program carries. Their ids are
// known to whoever reads a report and never change their meaning.
#pragma once

#include <string>
#include <vector>

struct CLAIM
{
    std::wstring szId; // "frame.class": the group stands before the dot
    std::wstring szSentence;
    std::wstring szHow; // how it is found out
};

// In the order of the page.
const std::vector<CLAIM>& AllClaims();
