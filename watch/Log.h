// The watch's events, one line each. Scripts wait for these lines and search them, so their wording is an interface.
#pragma once

#include <format>
#include <functional>
#include <mutex>
#include <string>

// Hands every event line to a sink, one at a time, from whichever thread it comes.
class CLog
{
public:
    // Receives one line without its line feed.
    using Sink = std::function<void(const std::string& szLine)>;

    explicit CLog(Sink sink) : m_sink(std::move(sink)) {}

    template<class... Arguments>
    void Line(std::format_string<Arguments...> format, Arguments&&... arguments)
    {
        const std::string szLine = std::format(format, std::forward<Arguments>(arguments)...);
        const std::lock_guard lock(m_mutex);
        m_sink(szLine);
    }

private:
    std::mutex m_mutex;
    Sink m_sink;
};
