// Libraries that somebody has put beside the program. Each of them leaves a file when it is loaded.
#include "check/Listener.h"
#include "check/Redirect.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "check/Walk.h"
#include "launcher/RemoteLibrary.h"

#include <format>

namespace {

// What the compiler would link if it were not told otherwise, and what parts of the system are known to load by name.
constexpr PCWSTR kOthers[] = {L"libgcc_s_seh-1.dll",
                              L"libstdc++-6.dll",
                              L"libwinpthread-1.dll",
                              L"apphelp.dll",
                              L"bcrypt.dll",
                              L"cfgmgr32.dll",
                              L"coremessaging.dll",
                              L"cryptbase.dll",
                              L"cryptsp.dll",
                              L"d2d1.dll",
                              L"dataexchange.dll",
                              L"dcomp.dll",
                              L"dui70.dll",
                              L"duser.dll",
                              L"dwmapi.dll",
                              L"dwrite.dll",
                              L"edputil.dll",
                              L"explorerframe.dll",
                              L"iertutil.dll",
                              L"kernel.appcore.dll",
                              L"linkinfo.dll",
                              L"mpr.dll",
                              L"msimg32.dll",
                              L"mswsock.dll",
                              L"netapi32.dll",
                              L"netutils.dll",
                              L"ntmarta.dll",
                              L"ntshrui.dll",
                              L"oleacc.dll",
                              L"policymanager.dll",
                              L"powrprof.dll",
                              L"profapi.dll",
                              L"propsys.dll",
                              L"rsaenh.dll",
                              L"secur32.dll",
                              L"srvcli.dll",
                              L"sspicli.dll",
                              L"structuredquery.dll",
                              L"textinputframework.dll",
                              L"textshaping.dll",
                              L"thumbcache.dll",
                              L"twinapi.appcore.dll",
                              L"urlmon.dll",
                              L"userenv.dll",
                              L"usp10.dll",
                              L"uxtheme.dll",
                              L"version.dll",
                              L"windows.storage.dll",
                              L"windowscodecs.dll",
                              L"winmm.dll",
                              L"winnsi.dll",
                              L"wintypes.dll",
                              L"wldp.dll",
                              L"wtsapi32.dll"};

// Of them, libraries that parts of the system are known to load by name when they need them; a program starts without.
constexpr PCWSTR kLoadedByName[] = {L"cryptbase.dll", L"profapi.dll",       L"propsys.dll", L"textshaping.dll",
                                    L"wldp.dll",      L"windowscodecs.dll", L"winmm.dll"};

// No part of the system has a library of this name.
constexpr PCWSTR kAskedFor = L"asked-for.dll";

// A folder with a copy of the program, a package and planted libraries.
class CPlanted
{
public:
    CPlanted(CHECK& check, PCWSTR pszFolder) : m_folder(check.work.Path() / pszFolder)
    {
        create_directories(m_folder);
        copy_file(check.program, Program(), std::filesystem::copy_options::overwrite_existing);
        WriteBytes(m_folder / L"Check.apk", "no package");
        Plant(kAskedFor);
    }

    CPath Program() const
    {
        return m_folder / L"KalvoApkInstaller.exe";
    }

    void Plant(const CPath& name) const
    {
        static const std::string s_bytes = ReadBytes(PartsFolder() / L"planted.dll");
        if (s_bytes.empty()) {
            throw CLost{L"there is no library to plant"};
        }
        WriteBytes(m_folder / name, s_bytes);
    }

    // Those that were loaded, in one line; their traces go with this look.
    std::wstring Loaded() const
    {
        std::vector<std::wstring> names = NamesIn(m_folder);
        std::erase_if(names, [](const std::wstring& szName) { return !szName.ends_with(L".loaded"); });
        for (const std::wstring& szName : names) {
            remove(m_folder / szName);
        }
        return Joined(names, L" ", L"none");
    }

private:
    CPath m_folder;
};

// Asks the running program for a library by its name.
bool IsLoadedByName(const CInstaller& program)
{
    const CHandle hProcess(OpenProcess(PROCESS_CREATE_THREAD | PROCESS_QUERY_INFORMATION | PROCESS_VM_OPERATION |
                                           PROCESS_VM_WRITE | PROCESS_VM_READ | SYNCHRONIZE,
                                       FALSE, program.Process()));
    if (!hProcess) {
        throw CLost{L"the running program cannot be asked for a library"};
    }
    return LoadRemoteLibrary(hProcess.get(), kAskedFor) == ERROR_SUCCESS;
}

void Defended(CHECK& check)
{
    CAnswers& answers = check.answers;
    const CPlanted planted(check, L"planted");
    for (const std::wstring& szName : LinkedLibraries(check.program)) {
        planted.Plant(szName);
    }
    for (const PCWSTR pszName : kOthers) {
        planted.Plant(pszName);
    }
    const CWalk walk(check, planted.Program(), CWalk::kAnything);
    try {
        walk.WaitForStart();
    } catch (const CLost& lost) {
        // What is loaded in the place of a library that is linked lets nothing start.
        answers.Tell(L"loader.start", false, L"none", planted.Loaded() + L"; " + lost.szWhy);
        throw;
    }
    answers.Expect(L"loader.start", L"none", planted.Loaded());
    const CListener watch(CListener::kStaysOpen);
    walk.GoTo(7, watch.Port());
    answers.Expect(L"loader.pages", L"none", planted.Loaded());
    walk.OpenFileDialog();
    walk.LeaveFileDialog();
    answers.Expect(L"loader.dialog", L"none", planted.Loaded());
    for (int nPage = 8; nPage <= 14; ++nPage) {
        walk.JumpTo(nPage);
    }
    answers.Expect(L"loader.last-pages", L"none", planted.Loaded());
    answers.Either(L"loader.by-name", !IsLoadedByName(walk.Program()), L"not loaded", L"loaded");
}

// The defences taken out: the load configuration's flags, and the first call of the program.
void TakeDefencesOut(const CPath& program)
{
    const CPath copy = program.parent_path() / L"Copy.exe";
    CopyRedirected(program, copy, "SetDefaultDllDirectories", "SetLastError");
    rename(copy, program);
    ClearDependentLoadFlags(program);
}

void UndefendedByName(CHECK& check)
{
    const CPlanted planted(check, L"undefended");
    TakeDefencesOut(planted.Program());
    const CWalk walk(check, planted.Program());
    check.answers.Either(L"loader.undefended-by-name", IsLoadedByName(walk.Program()), L"loaded", L"not loaded");
}

// A program into which such libraries are loaded need not get far: they can do nothing that is asked of them.
void UndefendedBySystem(CHECK& check)
{
    const CPlanted planted(check, L"undefended-too");
    TakeDefencesOut(planted.Program());
    // A program that cannot start with them shall not say so in a box of the system's; it inherits this.
    const UINT nMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    for (const PCWSTR pszName : kLoadedByName) {
        planted.Plant(pszName);
    }
    std::wstring szWhy;
    try {
        const CWalk walk(check, planted.Program());
        const CListener watch(CListener::kStaysOpen);
        walk.GoTo(7, watch.Port());
        walk.OpenFileDialog();
    } catch (const CLost& lost) {
        szWhy = L"; it did not get far: " + lost.szWhy;
    }
    SetErrorMode(nMode);
    const std::wstring szLoaded = planted.Loaded();
    check.answers.Tell(L"loader.undefended-some", szLoaded != L"none", L"some of them", szLoaded + szWhy);
}

} // namespace

void CheckLoader(CHECK& check)
{
    check.answers.Expect(L"loader.flags", L"0x800", std::format(L"0x{:x}", DependentLoadFlags(check.program)));
    Defended(check);
    UndefendedByName(check);
    UndefendedBySystem(check);
}
