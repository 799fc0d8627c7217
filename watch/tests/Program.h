// The watch as the program that it is, run by a test.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

// A port of 127.0.0.1 that was free a moment ago.
std::uint16_t FreePort();

// A running program, its outputs in files of the folder. It does not outlive the object.
class CProgram
{
public:
    CProgram(const std::filesystem::path& folder, const std::vector<std::string>& arguments);
    ~CProgram();

    CProgram(const CProgram&) = delete;
    CProgram& operator=(const CProgram&) = delete;

    bool WaitForOutput(const std::string& szText) const;

    void Signal(int nSignal) const;

    // The exit status; -1 when it was ended by a signal or does not end in time.
    int Wait();

    // How many files and sockets it has open.
    std::size_t OpenFiles() const;

    std::string Output() const;
    std::string Errors() const;

private:
    std::filesystem::path m_out;
    std::filesystem::path m_err;
    pid_t m_nProcess = 0;
};
