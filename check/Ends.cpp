// Ends that are no ordinary ones: what is shown, and the exit code.
#include "check/Hands.h"
#include "check/Redirect.h"
#include "check/Stopping.h"
#include "check/Walk.h"

#include <format>

namespace {

constexpr DWORD kSoon = 30000;

// What the system says about an error, in its language and with its line break.
std::wstring SystemsWords(DWORD dwCode)
{
    WCHAR szText[1024] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText,
                   ARRAYSIZE(szText), nullptr);
    return szText;
}

// Statics show a line break, but what the system keeps of their text may have either kind.
std::wstring WithoutLineEnds(const std::wstring& szText)
{
    std::wstring szPlain;
    for (const wchar_t c : szText) {
        if (c != L'\r' && c != L'\n') {
            szPlain += c;
        }
    }
    return szPlain;
}

struct END
{
    std::vector<std::wstring> boxes; // "caption: text"
    std::optional<DWORD> dwCode;
};

// Runs the program, dismisses every box, and leaves the wizard if it comes.
END RunToTheEnd(CHECK& check, const CPath& program, PCWSTR pszPicture)
{
    END end;
    const CInstaller installer(check.surroundings, program);
    WaitFor(kSoon, [&] {
        const SIGHT sight = installer.Look();
        if (!sight.boxes.empty()) {
            Pause(200);
            const TREE box = sight.boxes.front();
            end.boxes.push_back(box.window.szText + L": " + WithoutLineEnds(MessageOf(box)));
            check.answers.AddPicture(pszPicture, box.window.hwnd);
            Press(installer.Process(), VK_RETURN);
            WaitFor(3000, [&] { return !IsWindow(box.window.hwnd); });
        } else if (sight.Number() != 0) {
            PostMessageW(sight.frame.window.hwnd, WM_CLOSE, 0, 0);
            Pause(200);
        }
        return installer.HasEnded();
    });
    end.dwCode = installer.WaitForEnd(0);
    return end;
}

std::wstring Describe(const END& end)
{
    std::wstring szBoxes;
    for (const std::wstring& szBox : end.boxes) {
        szBoxes += szBox + L" | ";
    }
    return (szBoxes.empty() ? L"no box" : szBoxes) +
           (end.dwCode ? std::format(L", exit code {}", static_cast<int>(*end.dwCode)) : L", it goes on running");
}

void Uncaught(CHECK& check)
{
    // A copy that cannot narrow a path throws, and catches nowhere.
    const CPath copy = check.program.parent_path() / L"Uncaught.exe";
    CopyRedirected(check.program, copy, "WideCharToMultiByte", "GetThreadId");
    const END end = RunToTheEnd(check, copy, L"an exception that nobody catches");
    check.answers.Tell(L"end.uncaught-silent", end.boxes.empty(), L"no box", Describe(end));
    check.answers.Tell(L"end.uncaught-code", end.dwCode == DWORD{3}, L"exit code 3", Describe(end));
}

CHandle Hold(const CPath& file, DWORD dwHow)
{
    return CHandle(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, dwHow, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Somebody holds the archive open.
void HeldArchive(CHECK& check)
{
    std::error_code error;
    create_directories(ToolsFolder(), error);
    const CPath archive = ToolsFolder() / L"platform-tools_kalvo.zip";
    END end;
    {
        const CHandle hArchive = Hold(archive, CREATE_ALWAYS);
        end = RunToTheEnd(check, check.program, L"the archive held open");
    }
    const std::wstring szWords =
        WithoutLineEnds(L"Error: CPlatformTools::WriteZipFileResource() > CreateFile() failed with error 32: " +
                        SystemsWords(ERROR_SHARING_VIOLATION));
    check.answers.Tell(L"end.language", end.boxes.size() == 2 && end.boxes[0] == szWords, szWords, Describe(end));
    check.answers.Tell(L"end.not-installed",
                       end.boxes.size() == 2 &&
                           end.boxes[1] == std::wstring(kTitle) + L": Unable to install Platform Tools",
                       L"Unable to install Platform Tools", Describe(end));
    check.answers.Tell(L"end.not-installed-code", end.dwCode == DWORD{0}, L"exit code 0", Describe(end));
    remove_all(ToolsFolder(), error);
}

// Somebody holds one of the tools open that an earlier run left.
void HeldTool(CHECK& check)
{
    {
        CWalk walk(check);
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
    check.answers.Tell(L"end.language-win32", end.boxes.size() == 1 && end.boxes[0] == szWords, szWords, Describe(end));
    check.answers.Tell(L"end.held-code", end.dwCode == DWORD{13}, L"exit code 13", Describe(end));
    StopAdb();
    std::error_code error;
    remove_all(ToolsFolder(), error);
}

} // namespace

void CheckEnds(CHECK& check)
{
    Uncaught(check);
    StopAdb();
    std::error_code error;
    remove_all(ToolsFolder(), error);
    HeldArchive(check);
    HeldTool(check);
}
