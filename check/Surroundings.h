// Where the check runs, as whoever starts it knows better than the system tells: a text file, a line each.
//
//   # a remark
//   through PROGRAM          starts the installer through that program, which gets its path as the only argument and
//                            ends with it and with its exit code
//   not-tried ID REASON      what cannot be found out here
//   told SENTENCE            stands in the report, which is not one of plain Windows
#pragma once

#include <string>
#include <utility>
#include <vector>

struct SURROUNDINGS
{
    std::wstring szThrough;
    std::vector<std::pair<std::wstring, std::wstring>> notTried;
    std::vector<std::wstring> told;
};

// Throws CLost for a file that cannot be read and for a line that makes no sense.
SURROUNDINGS ReadSurroundings(const std::wstring& szFile);
