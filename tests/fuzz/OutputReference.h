// A second judge of adb's output, as plain as it can be written: a stream taken line by line, a table looked up by
// number, a search by hand. It shares nothing with the product, not even the numbers.
#pragma once

#include <string>

namespace reference {

bool FindOutputPattern(const std::string& line, int nFirst, int nLast, int& nIndex);

// Each counts in nBoxes the boxes that the user is to see.
int KillServer(const std::string& output, int& nBoxes);
int Connect(const std::string& output, int& nBoxes);
int Pair(const std::string& output, int& nBoxes);
int Install(const std::string& output, int& nBoxes);
int FailedToInstall(const std::string& line, int& nBoxes);

// The failure name in a line, found by hand and, in the second, by std::regex. Empty when there is none. The
// library's expression goes one call deeper for each character: it is for short lines.
constexpr size_t kShortLine = 4096;
std::string FailureName(const std::string& line);
std::string FailureNameByRegex(const std::string& line);

} // namespace reference
