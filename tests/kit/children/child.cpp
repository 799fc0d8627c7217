// A small console program for tests that start one. Its first argument says what it does:
//
//   nothing              prints nothing
//   arguments            prints its command line and its arguments, each on a line
//   bytes N              prints N bytes, each its own position modulo 251
//   nuls                 prints text with NUL bytes in it
//   both                 prints on standard output and standard error in turn
//   exit CODE            prints a line and ends with this exit code
//   hand-on              leaves its standard output to a process that prints later, and ends
//   linger               is that process
//   live-on EVENT        prints a line, closes its output, and lives until the event with this name comes, or for
//                        twenty seconds
//   console              prints whether it has a console window

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void Print(DWORD nStream, const std::string& strText)
{
    DWORD cbWritten = 0;
    WriteFile(GetStdHandle(nStream), strText.data(), static_cast<DWORD>(strText.size()), &cbWritten, nullptr);
}

void Print(const std::string& strText)
{
    Print(STD_OUTPUT_HANDLE, strText);
}

void PrintBytes(size_t nCount)
{
    std::string strBytes;
    for (size_t n = 0; n < nCount; ++n) {
        strBytes += static_cast<char>(n % 251);
    }
    Print(strBytes);
}

void PrintArguments(int argc, char** argv)
{
    Print(std::string(GetCommandLineA()) + "\n");
    for (int n = 1; n < argc; ++n) {
        Print(std::string(argv[n]) + "\n");
    }
}

void PrintOnBoth()
{
    for (const char* pszNumber : {"1", "2", "3"}) {
        Print(STD_OUTPUT_HANDLE, std::string("out") + pszNumber + "\r\n");
        Print(STD_ERROR_HANDLE, std::string("err") + pszNumber + "\r\n");
    }
}

void HandOn()
{
    WCHAR szSelf[MAX_PATH];
    GetModuleFileNameW(nullptr, szSelf, MAX_PATH);
    WCHAR szArguments[] = L"child linger";
    STARTUPINFOW si = {};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi = {};
    Print("early\n");
    CreateProcessW(szSelf, szArguments, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &si, &pi);
}

void LiveOn(const char* pszEvent)
{
    Print("done\n");
    CloseHandle(GetStdHandle(STD_OUTPUT_HANDLE));
    WaitForSingleObject(OpenEventA(SYNCHRONIZE, FALSE, pszEvent), 20000);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string strAction = argc > 1 ? argv[1] : "";
    const char* pszValue = argc > 2 ? argv[2] : "0";
    if (strAction == "arguments") {
        PrintArguments(argc, argv);
    } else if (strAction == "bytes") {
        PrintBytes(static_cast<size_t>(std::atoi(pszValue)));
    } else if (strAction == "nuls") {
        Print(std::string("a\0b\0\0c\n\0", 8));
    } else if (strAction == "both") {
        PrintOnBoth();
    } else if (strAction == "exit") {
        Print("Success\r\n");
        return std::atoi(pszValue);
    } else if (strAction == "hand-on") {
        HandOn();
    } else if (strAction == "linger") {
        Sleep(700);
        Print("late\n");
    } else if (strAction == "live-on") {
        LiveOn(pszValue);
    } else if (strAction == "console") {
        Print(GetConsoleWindow() == nullptr ? "no window" : "a window");
    } else if (strAction != "nothing") {
        Print(STD_ERROR_HANDLE, "what?\n");
        return 2;
    }
    return 0;
}
