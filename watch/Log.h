// The watch's events, one line each. Scripts wait for these lines and search them, so their wording is an interface.
#pragma once

#include <format>
#include <functional>
#include <mutex>
#include <string>

// Hands every event line to a sink, one at a time and whole, from whichever thread it comes.
class CLog
{
public:
    // Receives one line without its line feed.
    using Sink = std::function<void(const std::string& szLine)>;

    explicit CLog(Sink sink);

    // Parts of a line come from strangers on the network: control characters become '?' and an over-long line is cut,
    // so that nobody can forge an event or flood a terminal.
    template<class... Arguments>
    void Line(std::format_string<Arguments...> format, Arguments&&... arguments)
    {
        Write(std::format(format, std::forward<Arguments>(arguments)...));
    }

private:
    void Write(std::string szLine);

    std::mutex m_mutex;
    Sink m_sink;
};

// A sink that prints to standard output and flushes each line: whoever waits for an event reads through a pipe or a
// file, where the C library would hold lines back.
void PrintLine(const std::string& szLine);

// `text` with everything but printable characters replaced by '?'. Bytes from 128 up stay: names are UTF-8.
std::string Printable(std::string_view text);
