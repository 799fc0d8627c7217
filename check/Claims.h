// Everything that the check looks at, a row each. Their ids are known to whoever reads a report and never change their
// meaning; docs/windows-check.md lists the same rows.
#pragma once

#include <string>
#include <vector>

struct CLAIM
{
    std::wstring szId; // "frame.class": the group stands before the dot
    std::wstring szSentence;
    std::wstring szHow; // how it is found out
};

// In the order of the report.
const std::vector<CLAIM>& AllClaims();

// "page" of "page-05.title", "frame" of "frame.class".
std::wstring GroupOf(const std::wstring& szId);

// The table as JSON.
std::string ClaimsAsJson();
