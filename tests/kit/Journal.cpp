#include "tests/kit/Journal.h"

#include <algorithm>
#include <utility>

namespace kit {

Lines& Journal()
{
    static Lines s_journal;
    return s_journal;
}

void Note(std::string strLine)
{
    Journal().push_back(std::move(strLine));
}

Lines JournalOf(const Lines& wanted)
{
    Lines found;
    std::ranges::copy_if(Journal(), std::back_inserter(found), [&wanted](const std::string& strLine) {
        return std::ranges::find(wanted, strLine) != wanted.end();
    });
    return found;
}

} // namespace kit
