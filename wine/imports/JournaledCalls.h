// The calls that the journal tells of: what ends a run and in which order, and every message box.
//
//   WSACleanup
//   CoUninitialize
//   ReleaseMutex
//   CloseHandle mutex                  of a mutex that the program made; other handles are not told of
//   ExitProcess code=13
//   SetForegroundWindow title="..."
//   MessageBoxW owner=none flags=0x00000000 caption="..." text="..."
//                                      owner: none or some; written before the box is shown
//   PropertySheetW result=1            when the wizard has ended
//   ended code=13                      written by the launcher when the process is gone, with all 32 bits
//                                      of its exit code
//   fault WriteFile                    a call fails, or never returns, because the list of faults wants it so;
//                                      written before
#pragma once

#include <windows.h>

// Puts the journal into the import table of hModule, if there is one. To be called when all other
// replacements are in place, so that it tells of every call, also of one that is made to fail.
void InstallJournal(HMODULE hModule);
