// Event lines.

#include "Journal.h"

#include <gtest/gtest.h>

TEST(Log, LineStaysOneLine)
{
    CJournal journal;
    journal.Log().Line("{} {}", "a\r\nb\t\x1B[0m\x7F", 5);
    journal.Log().Line("caf\xC3\xA9");
    EXPECT_EQ(journal.Text(), "a??b??[0m? 5\ncaf\xC3\xA9\n");
}

TEST(Log, LongLineIsCut)
{
    CJournal journal;
    journal.Log().Line("{}", std::string(1'000'000, 'x'));
    EXPECT_EQ(journal.Text(), std::string(2000, 'x') + '\n');
}
