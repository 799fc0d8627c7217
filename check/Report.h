// What the user sends back.
#pragma once

#include "check/Answers.h"
#include "check/Folders.h"

#include <string>
#include <utility>
#include <vector>

struct RUN
{
    std::wstring szProgram; // the installer's version
    std::vector<std::pair<std::wstring, std::wstring>> machine;
    std::vector<std::wstring> told; // by whoever started the check
    bool bCancelled = false;
    ULONGLONG nSeconds = 0;
};

// Writes report.json and report.html; throws CLost when the folder does not take them.
void WriteReport(const CPath& folder, const CAnswers& answers, const RUN& run);
