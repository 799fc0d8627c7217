// The tools on the disk: written, removed, found in the way.
#include "check/Stopping.h"
#include "check/Walk.h"
#include "driver/Reading.h"

#include <commctrl.h>
#include <miniz.h>

#include <format>

namespace {

constexpr PCWSTR kTools =
    L"platform-tools, platform-tools/AdbWinApi.dll, platform-tools/AdbWinUsbApi.dll, platform-tools/adb.exe, "
    L"platform-tools_kalvo.zip";

std::string EmbeddedArchive(const CPath& program)
{
    return ResourceBytes(OpenProgram(program).get(), IDR_PLATFORM_TOOLS_ZIP);
}

std::string Unpacked(const std::string& archive, const std::string& member)
{
    mz_zip_archive zip = {};
    std::string bytes;
    if (mz_zip_reader_init_mem(&zip, archive.data(), archive.size(), 0)) {
        size_t cb = 0;
        if (void* const p = mz_zip_reader_extract_file_to_heap(&zip, member.c_str(), &cb, 0)) {
            bytes.assign(static_cast<const char*>(p), cb);
            mz_free(p);
        }
        mz_zip_reader_end(&zip);
    }
    return bytes;
}

void LookAtTools(CAnswers& answers, const CPath& program)
{
    answers.Expect(L"deploy.files", kTools, ListOf(ToolsFolder()));
    const std::string archive = EmbeddedArchive(program);
    const bool bSame = !archive.empty() && ReadBytes(ToolsFolder() / L"platform-tools_kalvo.zip") == archive;
    answers.Either(L"deploy.archive", bSame, std::format(L"the {} bytes in the program", archive.size()), L"others");
    std::wstring szDifferent;
    for (const PCWSTR pszName : {L"adb.exe", L"AdbWinApi.dll", L"AdbWinUsbApi.dll"}) {
        const CPath member = CPath(L"platform-tools") / pszName;
        const std::string packed = Unpacked(archive, member.generic_string());
        if (packed.empty() || ReadBytes(ToolsFolder() / member) != packed) {
            szDifferent += std::wstring(pszName) + L" ";
        }
    }
    answers.Expect(L"deploy.unpacked", L"", szDifferent);
}

// The user, or another program, has called the log-off off.
void CallLogOffOff(const CWalk& walk)
{
    const HWND hwnd = walk.Look().frame.window.hwnd;
    const bool bAgrees = Ask(hwnd, WM_QUERYENDSESSION, 0, static_cast<LPARAM>(ENDSESSION_LOGOFF)).value_or(0) != 0;
    Ask(hwnd, WM_ENDSESSION, FALSE, static_cast<LPARAM>(ENDSESSION_LOGOFF));
    Pause(300);
    walk.Answers().Tell(L"deploy.log-off", walk.Look().Number() == 1 && ListOf(ToolsFolder()) == kTools,
                        L"page 1 and all tools",
                        std::format(L"page {}, {}; it {} to the log-off", walk.Look().Number(), ListOf(ToolsFolder()),
                                    bAgrees ? L"agreed" : L"did not agree"));
}

// What a run leaves that was killed, and what another build of it left.
void LeaveBehind(CHECK& check)
{
    const CWalk walk(check);
    walk.Program().Kill();
    check.answers.Expect(L"deploy.killed", kTools, ListOf(ToolsFolder()));
    WriteBytes(ToolsFolder() / L"platform-tools_other.zip", "left over");
    WriteBytes(ToolsFolder() / L"platform-tools" / L"more.txt", "left over");
    WriteBytes(AdbPath().parent_path() / L"AdbWinApi.dll", "left over");
}

} // namespace

void CheckDeployment(CHECK& check)
{
    {
        const CWalk walk(check);
        LookAtTools(check.answers, check.program);
        CallLogOffOff(walk);
        walk.Press(VK_ESCAPE);
        walk.ExpectEnd(L"deploy.gone-escape");
    }
    LeaveBehind(check);
    {
        const CWalk walk(check);
        const std::string library = Unpacked(EmbeddedArchive(check.program), "platform-tools/AdbWinApi.dll");
        const bool bNew = !library.empty() && ReadBytes(AdbPath().parent_path() / L"AdbWinApi.dll") == library;
        check.answers.Expect(L"deploy.left-over", kTools,
                             ListOf(ToolsFolder()) + (bNew ? L"" : L", one of them the old one"));
        walk.ClickControl(IDCANCEL);
        walk.ExpectEnd(L"deploy.gone-cancel");
    }
    const CWalk walk(check);
    walk.Press(VK_F4, VK_MENU);
    walk.ExpectEnd(L"deploy.gone-close");
}
