// Collects what a watch logs, for tests to wait for and look into.
#pragma once

#include "Log.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

class CJournal
{
public:
    CLog& Log()
    {
        return m_log;
    }

    // Waits until the line, letter for letter, has been logged so often; false when that takes too long.
    bool WaitFor(const std::string& szLine, std::size_t nTimes = 1);

    // How often a line that begins like this has been logged.
    std::size_t Count(const std::string& szBeginning) const;

    // Everything logged so far, each line with its line feed; for the messages of failed expectations.
    std::string Text() const;

private:
    void Take(const std::string& szLine);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_lines;
    CLog m_log{[this](const std::string& szLine) { Take(szLine); }};
};
