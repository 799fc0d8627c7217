#include "Program.h"

#include "FileDescriptor.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <format>
#include <fstream>
#include <iterator>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char* PROGRAM = EMULATED_WATCH_PROGRAM;

// Twenty seconds in all.
constexpr int LOOKS = 200;
constexpr std::chrono::milliseconds BETWEEN_LOOKS{100};

std::string ContentsOf(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

std::uint16_t FreePort()
{
    const CFileDescriptor fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t nSize = sizeof address;
    bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), nSize);
    getsockname(fd.Get(), reinterpret_cast<sockaddr*>(&address), &nSize);
    return ntohs(address.sin_port);
}

CProgram::CProgram(const std::filesystem::path& folder, const std::vector<std::string>& arguments)
    : m_out(folder / "out"), m_err(folder / "err")
{
    std::vector<char*> argv = {const_cast<char*>(PROGRAM)};
    for (const std::string& szArgument : arguments) {
        argv.push_back(const_cast<char*>(szArgument.c_str()));
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, m_out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, m_err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int nError = posix_spawn(&m_nProcess, PROGRAM, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (nError != 0) {
        throw std::system_error(nError, std::generic_category(), PROGRAM);
    }
}

CProgram::~CProgram()
{
    if (m_nProcess > 0) {
        kill(m_nProcess, SIGKILL);
        waitpid(m_nProcess, nullptr, 0);
    }
}

bool CProgram::WaitForOutput(const std::string& szText) const
{
    for (int i = 0; i < LOOKS; ++i) {
        if (Output().find(szText) != std::string::npos) {
            return true;
        }
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    }
    return false;
}

void CProgram::Signal(int nSignal) const
{
    kill(m_nProcess, nSignal);
}

int CProgram::Wait()
{
    for (int i = 0; i < LOOKS; ++i) {
        int nStatus = 0;
        if (waitpid(m_nProcess, &nStatus, WNOHANG) == m_nProcess) {
            m_nProcess = 0;
            return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
        }
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    }
    return -1;
}

std::size_t CProgram::OpenFiles() const
{
    const std::filesystem::directory_iterator files(std::format("/proc/{}/fd", m_nProcess));
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::string CProgram::Output() const
{
    return ContentsOf(m_out);
}

std::string CProgram::Errors() const
{
    return ContentsOf(m_err);
}
