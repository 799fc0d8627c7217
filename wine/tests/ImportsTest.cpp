// Replacing imports, and the journal's way of writing.
#include "imports/ImportTable.h"
#include "imports/Journal.h"

#include <gtest/gtest.h>

namespace {

DWORD WINAPI Always42()
{
    return 42;
}

// A function of its own: within one, the compiler looks an import up once and keeps it.
[[gnu::noinline]] DWORD Ask()
{
    return GetCurrentProcessId();
}

} // namespace

TEST(ImportTable, ACallLeadsToTheReplacement)
{
    const HMODULE hModule = GetModuleHandleW(nullptr);
    auto* const pfnReal = ReplaceImport(hModule, "GetCurrentProcessId", Always42);
    ASSERT_NE(pfnReal, nullptr);
    EXPECT_EQ(Ask(), 42u);
    EXPECT_NE(pfnReal(), 42u);
    EXPECT_EQ(ReplaceImport(hModule, "GetCurrentProcessId", pfnReal), Always42);
    EXPECT_NE(Ask(), 42u);
}

TEST(ImportTable, WhatIsNotImportedIsLeftAlone)
{
    EXPECT_EQ(ReplaceImport(GetModuleHandleW(nullptr), "NoSuchFunction", Always42), nullptr);
}

TEST(Journal, KeepsTheLastErrorWhateverBecomesOfTheFile)
{
    SetEnvironmentVariableW(kJournalVariable, L"C:\\no such folder\\journal.txt");
    SetLastError(ERROR_DISK_FULL);
    WriteJournal(L"a line");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
    SetEnvironmentVariableW(kJournalVariable, nullptr);
}

TEST(Journal, TextsAreQuotedOnOneLine)
{
    EXPECT_EQ(QuotedOnOneLine(L"a \"b\" \\ c\r\n\td"), L"\"a \\\"b\\\" \\\\ c\\r\\n\\td\"");
}
