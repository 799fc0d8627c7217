// What happened, in order: every call of a replaced function leaves a line.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace kit {

using Lines = std::vector<std::string>;

// The lines since the test began. May be cleared on the way.
inline Lines& Journal()
{
    static Lines s_journal;
    return s_journal;
}

// Adds a line of the test's own.
inline void Note(std::string strLine)
{
    Journal().push_back(std::move(strLine));
}

// The lines that are among the given ones, in order: for a test that minds only some functions.
inline Lines JournalOf(const Lines& wanted)
{
    Lines found = Journal();
    std::erase_if(found, [&](const std::string& strLine) { return std::ranges::count(wanted, strLine) == 0; });
    return found;
}

} // namespace kit
