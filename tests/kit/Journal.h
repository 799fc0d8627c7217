// What happened, in order: every call of a replaced function leaves a line.
#pragma once

#include <string>
#include <vector>

namespace kit {

using Lines = std::vector<std::string>;

// The lines since the test began. May be cleared on the way.
Lines& Journal();

// Adds a line of the test's own.
void Note(std::string strLine);

// The lines that are among the given ones, in order: for a test that minds only some functions.
Lines JournalOf(const Lines& wanted);

} // namespace kit
