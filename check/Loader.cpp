// Libraries that somebody has put beside the program. Each of them leaves a file when it is loaded.
#include "check/Listener.h"
#include "check/Redirect.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "check/Walk.h"
#include "launcher/RemoteLibrary.h"

#include <format>

namespace {

// Libraries that parts of the system are known to load by name when they need them; a program starts without.
constexpr PCWSTR kLoadedByName =
    L"cryptbase.dll profapi.dll propsys.dll textshaping.dll wldp.dll windowscodecs.dll winmm.dll";

// What the compiler would link if it were not told otherwise, and what else the system is known to look for.
constexpr PCWSTR kOthers =
    L"libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll apphelp.dll bcrypt.dll cfgmgr32.dll coremessaging.dll "
    L"cryptsp.dll d2d1.dll dataexchange.dll dcomp.dll dui70.dll duser.dll dwmapi.dll dwrite.dll edputil.dll "
    L"explorerframe.dll iertutil.dll kernel.appcore.dll linkinfo.dll mpr.dll msimg32.dll mswsock.dll netapi32.dll "
    L"netutils.dll ntmarta.dll ntshrui.dll oleacc.dll policymanager.dll powrprof.dll rsaenh.dll secur32.dll "
    L"srvcli.dll sspicli.dll structuredquery.dll textinputframework.dll thumbcache.dll twinapi.appcore.dll "
    L"urlmon.dll userenv.dll usp10.dll uxtheme.dll version.dll windows.storage.dll winnsi.dll wintypes.dll "
    L"wtsapi32.dll";

// No part of the system has a library of this name.
constexpr PCWSTR kAskedFor = L"asked-for.dll";

void Plant(const CPath& program, const std::vector<std::wstring>& names)
{
    const std::string library = ReadBytes(PartsFolder() / L"planted.dll");
    if (library.empty()) {
        throw CLost{L"there is no library to plant"};
    }
    for (const std::wstring& szName : names) {
        WriteBytes(program.parent_path() / szName, library);
    }
}

// A copy of the program in a folder of its own, where such libraries lie.
CPath PlantedCopy(const CHECK& check, PCWSTR pszFolder, PCWSTR pszNames)
{
    CPath copy = CopyIntoFolder(check.program, check.work.Path() / pszFolder);
    Plant(copy, WordsIn(pszNames));
    Plant(copy, {kAskedFor});
    return copy;
}

// Those that were loaded, in one line; their traces go with this look.
std::wstring LoadedBy(const CPath& program)
{
    std::vector<std::wstring> names = NamesIn(program.parent_path());
    std::erase_if(names, [](const std::wstring& szName) { return !szName.ends_with(L".loaded"); });
    for (const std::wstring& szName : names) {
        remove(program.parent_path() / szName);
    }
    return Joined(names, L" ", L"none");
}

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
    const CPath program = PlantedCopy(check, L"planted", kOthers);
    Plant(program, WordsIn(kLoadedByName));
    Plant(program, LinkedLibraries(program));
    const CWalk walk(check, program, CWalk::kAnything);
    try {
        walk.WaitForStart();
    } catch (const CLost& lost) {
        // What is loaded in the place of a library that is linked lets nothing start.
        answers.Tell(L"loader.start", false, L"none", LoadedBy(program) + L"; " + lost.szWhy);
        throw;
    }
    answers.Expect(L"loader.start", L"none", LoadedBy(program));
    const CListener watch(CListener::kStaysOpen);
    walk.GoTo(7, watch.Port());
    answers.Expect(L"loader.pages", L"none", LoadedBy(program));
    walk.OpenFileDialog();
    walk.LeaveFileDialog();
    answers.Expect(L"loader.dialog", L"none", LoadedBy(program));
    for (int nPage = 8; nPage <= 14; ++nPage) {
        walk.JumpTo(nPage);
        walk.WaitForPage(nPage);
    }
    answers.Expect(L"loader.last-pages", L"none", LoadedBy(program));
    answers.Either(L"loader.by-name", !IsLoadedByName(walk.Program()), L"not loaded", L"loaded");
}

// The defences taken out: the load configuration's flags, and the first call of the program.
CPath UndefendedCopy(const CHECK& check, PCWSTR pszFolder, PCWSTR pszNames)
{
    CPath copy = PlantedCopy(check, pszFolder, pszNames);
    CopyRedirected(copy, copy, "SetDefaultDllDirectories", "SetLastError");
    ClearDependentLoadFlags(copy);
    return copy;
}

void UndefendedByName(CHECK& check)
{
    const CWalk walk(check, UndefendedCopy(check, L"undefended", L""));
    check.answers.Either(L"loader.undefended-by-name", IsLoadedByName(walk.Program()), L"loaded", L"not loaded");
}

// A program into which such libraries are loaded need not get far: they can do nothing that is asked of them.
void UndefendedBySystem(CHECK& check)
{
    const CPath program = UndefendedCopy(check, L"undefended-too", kLoadedByName);
    // A program that cannot start with them shall not say so in a box of the system's; it inherits this.
    const UINT nMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    std::wstring szWhy;
    try {
        const CWalk walk(check, program);
        const CListener watch(CListener::kStaysOpen);
        walk.GoTo(7, watch.Port());
        walk.OpenFileDialog();
    } catch (const CLost& lost) {
        szWhy = L"; it did not get far: " + lost.szWhy;
    }
    SetErrorMode(nMode);
    const std::wstring szLoaded = LoadedBy(program);
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
