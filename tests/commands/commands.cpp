// Issues the product's adb commands on request, with the adb that the product carries, and tells what came of them.
//
//     commands FOLDER    keeps the tools in the folder while it runs
//
// A request is a line on standard input (UTF-8, tabs between its words):
//   kill-server
//   pair ADDRESS CODE
//   connect ADDRESS
//   install ADDRESS PATH
// The answer is a line of JSON on standard output: the name of the outcome, the boxes that were shown, each caption and
// text, the pauses in milliseconds, and what adb printed, a character for each byte. Boxes are answered with OK and
// pauses take no time. The end of the input ends it.
#include "adb/AdbCommands.h"
#include "tests/driver/Json.h"
#include "tests/kit/Replaced.h"
#include "tests/kit/Request.h"
#include "tools/PlatformTools.h"

#include <cstdio>
#include <format>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

// A character for each byte.
std::wstring Widen(const std::string& strBytes)
{
    std::wstring strWide;
    for (const unsigned char c : strBytes) {
        strWide += c;
    }
    return strWide;
}

std::string List(const std::vector<std::string>& items)
{
    std::string strList;
    for (const std::string& strItem : items) {
        strList += (strList.empty() ? "" : ",") + strItem;
    }
    return '[' + strList + ']';
}

// Keeps what a run shows and how long it would have paused.
class CWitness
{
public:
    std::string Answer(const std::string& strRequest)
    {
        m_boxes.clear();
        m_sleeps.clear();
        std::string strOutput;
        const std::wstring_view outcome = DescribeAdbExitCode(Issue(SplitRequest(strRequest), strOutput)).pszName;
        return std::format(R"({{"outcome":{},"boxes":{},"sleeps":{},"output":{}}})", Quoted(outcome), List(m_boxes),
                           List(m_sleeps), Quoted(Widen(strOutput)));
    }

private:
    static ADB_EXIT_CODE Issue(const std::vector<std::wstring>& words, std::string& strOutput)
    {
        if (words.size() == 1 && words[0] == L"kill-server") {
            return KillServer(&strOutput);
        }
        if (words.size() == 3 && words[0] == L"pair") {
            return Pair(words[1].c_str(), words[2].c_str(), &strOutput);
        }
        if (words.size() == 2 && words[0] == L"connect") {
            return Connect(words[1].c_str(), &strOutput);
        }
        if (words.size() == 3 && words[0] == L"install") {
            return Install(words[1].c_str(), words[2].c_str(), &strOutput);
        }
        throw std::invalid_argument("the requests are: kill-server, pair ADDRESS CODE, connect ADDRESS, install "
                                    "ADDRESS PATH");
    }

    int OnMessageBox(PCWSTR pszText, PCWSTR pszCaption)
    {
        m_boxes.push_back(List({Quoted(pszCaption), Quoted(pszText)}));
        return IDOK;
    }

    std::vector<std::string> m_boxes;
    std::vector<std::string> m_sleeps;
    REPLACED(MessageBoxW)
    m_messageBox{[this](HWND, PCWSTR pszText, PCWSTR pszCaption, UINT) { return OnMessageBox(pszText, pszCaption); }};
    REPLACED(Sleep)
    m_sleep{[this](DWORD dwMilliseconds) { m_sleeps.push_back(std::to_string(dwMilliseconds)); }};
};

int Serve(const std::wstring& strFolder)
{
    CPlatformTools& tools = CPlatformTools::GetInstance();
    if (!tools.Initialize(strFolder.c_str()) || !tools.Install()) {
        std::fputs("the tools cannot be installed\n", stderr);
        return 1;
    }
    CWitness witness;
    for (std::string strRequest; std::getline(std::cin, strRequest);) {
        std::cout << witness.Answer(strRequest) << '\n' << std::flush;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 2) {
        std::fputs("usage: commands FOLDER\n", stderr);
        return 2;
    }
    return Serve(FromUtf8(argv[1]));
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
