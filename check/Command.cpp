#include "check/Command.h"

#include "check/Stopping.h"
#include "launcher/Handle.h"

#include <sstream>

namespace {

// Takes what is there without waiting. False when nobody holds the other end any more.
bool ReadAvailable(HANDLE hRead, std::string& text)
{
    DWORD cb = 0;
    while (PeekNamedPipe(hRead, nullptr, 0, nullptr, &cb, nullptr)) {
        if (cb == 0) {
            return true;
        }
        std::string piece(cb, '\0');
        if (!ReadFile(hRead, piece.data(), cb, &cb, nullptr)) {
            return false;
        }
        text.append(piece, 0, cb);
    }
    return false;
}

} // namespace

PRINTED RunCommand(const std::wstring& szCommandLine, DWORD dwMilliseconds)
{
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    HANDLE hRead = nullptr;
    HANDLE hWrite = nullptr;
    if (!CreatePipe(&hRead, &hWrite, &inheritable, 0)) {
        throw CLost{L"no pipe can be made"};
    }
    const CHandle read(hRead);
    CHandle write(hWrite);
    SetHandleInformation(hRead, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = hWrite;
    startup.hStdError = hWrite;
    PROCESS_INFORMATION process = {};
    std::wstring szLine = szCommandLine;
    if (!CreateProcessW(nullptr, szLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                        &process)) {
        throw CLost{L"cannot start " + szCommandLine};
    }
    const CHandle hProcess(process.hProcess);
    const CHandle hThread(process.hThread);
    write.reset();
    PRINTED printed = {};
    const ULONGLONG nStart = GetTickCount64();
    try {
        WaitFor(dwMilliseconds, [&] { return !ReadAvailable(hRead, printed.text); });
        printed.dwMilliseconds = static_cast<DWORD>(GetTickCount64() - nStart);
        WaitFor(1000, [&] { return WaitForSingleObject(hProcess.get(), 0) == WAIT_OBJECT_0; });
    } catch (const CStopped&) {
        TerminateProcess(hProcess.get(), 1);
        throw;
    }
    GetExitCodeProcess(hProcess.get(), &printed.dwExitCode);
    if (printed.dwExitCode == STILL_ACTIVE) {
        TerminateProcess(hProcess.get(), 1);
    }
    return printed;
}

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        std::erase(line, '\r');
        lines.push_back(line);
    }
    return lines;
}
