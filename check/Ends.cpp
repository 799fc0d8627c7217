// Ends that are no ordinary ones: what is shown, and the exit code.
#include "check/Redirect.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "check/Walk.h"

#include <format>

namespace {

constexpr DWORD kLongestRun = 30000;

// What the system says about an error, in its language and with its line break.
std::wstring SystemsWords(DWORD dwCode)
{
    WCHAR szText[1024] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText,
                   ARRAYSIZE(szText), nullptr);
    return szText;
}

// Statics show a line break, but what the system keeps of their text may have either kind.
std::wstring WithoutLineEnds(std::wstring szText)
{
    std::erase_if(szText, [](wchar_t c) { return c == L'\r' || c == L'\n'; });
    return szText;
}

// "caption: text" of each box, and how the program ended.
struct END
{
    std::vector<std::wstring> boxes;
    std::wstring szEnd;

    std::wstring Words() const
    {
        return Joined(boxes, L" | ", L"no box") + L", " + szEnd;
    }
};

// Runs the program, dismisses every box, and leaves the wizard if it comes.
END RunToTheEnd(CHECK& check, const CPath& program, PCWSTR pszPicture)
{
    END end;
    const CWalk walk(check, program, CWalk::kAnything);
    WaitFor(kLongestRun, [&] {
        const SIGHT sight = walk.Look();
        if (!sight.boxes.empty()) {
            const TREE box = walk.WaitForBox();
            end.boxes.push_back(WithoutLineEnds(WordsOf(box)));
            check.answers.AddPicture(pszPicture, box.window.hwnd);
            walk.Dismiss(box);
        } else if (sight.Number() != 0) {
            PostMessageW(sight.frame.window.hwnd, WM_CLOSE, 0, 0);
            Pause(200);
        }
        return walk.Program().HasEnded();
    });
    end.szEnd = walk.Program().WaitForEnd(0);
    return end;
}

void Uncaught(CHECK& check)
{
    // A copy that cannot narrow a path throws, and catches nowhere.
    const CPath copy = check.program.parent_path() / L"Uncaught.exe";
    CopyRedirected(check.program, copy, "WideCharToMultiByte", "GetThreadId");
    const END end = RunToTheEnd(check, copy, L"an exception that nobody catches");
    check.answers.Tell(L"end.uncaught-silent", end.boxes.empty(), L"no box", end.Words());
    check.answers.Expect(L"end.uncaught-code", L"exit code 3", end.szEnd);
}

CHandle Hold(const CPath& file, DWORD dwHow)
{
    const HANDLE hFile = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, dwHow, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        throw CLost{L"cannot hold " + file.filename().wstring()};
    }
    return CHandle(hFile);
}

// Somebody holds the archive open.
void HeldArchive(CHECK& check)
{
    create_directories(ToolsFolder());
    END end;
    {
        const CHandle hArchive = Hold(ToolsFolder() / L"platform-tools_kalvo.zip", CREATE_ALWAYS);
        end = RunToTheEnd(check, check.program, L"the archive held open");
    }
    const std::wstring szWords =
        WithoutLineEnds(L"Error: CPlatformTools::WriteZipFileResource() > CreateFile() failed with error 32: " +
                        SystemsWords(ERROR_SHARING_VIOLATION));
    const std::wstring szNotInstalled = std::wstring(kTitle) + L": Unable to install Platform Tools";
    const bool bTwo = end.boxes.size() == 2;
    check.answers.Tell(L"end.language", bTwo && end.boxes[0] == szWords, szWords, end.Words());
    check.answers.Tell(L"end.not-installed", bTwo && end.boxes[1] == szNotInstalled, szNotInstalled, end.Words());
    check.answers.Expect(L"end.not-installed-code", kEndedWell, end.szEnd);
    RemoveTools();
}

// Somebody holds one of the tools open that an earlier run left.
void HeldTool(CHECK& check)
{
    {
        const CWalk walk(check);
        walk.Program().Kill();
    }
    END end;
    {
        const CHandle hTool = Hold(AdbPath().parent_path() / L"AdbWinUsbApi.dll", OPEN_EXISTING);
        end = RunToTheEnd(check, check.program, L"a tool held open");
    }
    const std::wstring szWords = WithoutLineEnds(
        L"Win32 Error: CPlatformTools::DeleteFolder() > SHFileOperation() failed with error 0x0000000D: " +
        SystemsWords(ERROR_INVALID_DATA));
    check.answers.Expect(L"end.language-win32", szWords, Joined(end.boxes, L" | ", L"no box"));
    check.answers.Expect(L"end.held-code", L"exit code 13", end.szEnd);
    RemoveTools();
}

} // namespace

void CheckEnds(CHECK& check)
{
    Uncaught(check);
    RemoveTools();
    HeldArchive(check);
    HeldTool(check);
}
