// The journal: one line for each event, in order, appended to the file that the environment names.
#pragma once

#include <string>
#include <string_view>

// The name of the environment variable that holds the file's path. Without it nothing is written.
constexpr wchar_t kJournalVariable[] = L"KALVO_JOURNAL";

// The value of an environment variable; empty without it.
std::wstring EnvironmentText(const wchar_t* pszVariable);

// Appends the bytes to the file whose path the environment variable of that name holds, if there is one. Keeps the last
// error.
void AppendToFile(const wchar_t* pszVariable, std::string_view bytes);

// Whether there is a journal.
bool HasJournal();

// Appends a line; the file is UTF-8 and lines end with a line feed. Keeps the last error.
void WriteJournal(std::wstring_view szLine);

// The text in double quotes. A quote, a backslash, a line feed, a carriage return and a tab in it become
// \" \\ \n \r \t.
std::wstring QuotedOnOneLine(std::wstring_view szText);
