// The library that the launcher loads into a program before that starts. It patches the program's import
// table; nothing else of the program changes.
#include "frame/AeroWizard.h"
#include "imports/FailingCalls.h"
#include "imports/ImportTable.h"
#include "imports/JournaledCalls.h"
#include "imports/Transcript.h"
#include "system/AddressControl.h"
#include "system/BestRoute.h"
#include "system/CrashReport.h"
#include "system/MessageBoxes.h"

namespace {

decltype(PropertySheetW)* g_pfnSystemPropertySheetW;

INT_PTR WINAPI ShowPropertySheet(LPCPROPSHEETHEADERW pHeader)
{
    // Here, on the thread that will make them; the loader's thread must make no windows.
    MendAddressControl();
    return (pHeader->dwFlags & PSH_AEROWIZARD) != 0 ? RunAeroWizard(*pHeader) : g_pfnSystemPropertySheetW(pHeader);
}

// First what Wine lacks, then what is to fail, then the journal and the transcript of it all.
bool Install(HMODULE hProgram)
{
    ReportCrashes();
    g_pfnSystemPropertySheetW = ReplaceImport(hProgram, "PropertySheetW", ShowPropertySheet);
    ReplaceImport(hProgram, "GetBestRoute2", BestRoute);
    ReplaceImport(hProgram, "MessageBoxW", ShowMessageBox);
    if (!InstallFaults(hProgram)) {
        return false;
    }
    InstallJournal(hProgram);
    InstallTranscript(hProgram);
    return true;
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE /*hInstance*/, DWORD nReason, LPVOID /*pReserved*/)
{
    return nReason != DLL_PROCESS_ATTACH || Install(GetModuleHandleW(nullptr));
}
