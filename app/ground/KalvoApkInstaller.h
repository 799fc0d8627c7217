// Where the running program lies and where it may put its files.
#pragma once

#include "app/ground/Platform.h"

// The application paths. There is one object, filled once by start-up and only read afterwards.
class CKalvoApkInstaller
{
public:
    // The one object, zero-filled on first use and never destroyed before the process ends.
    static CKalvoApkInstaller& GetInstance();

    // Fills the paths. False when they are filled already or the executable's own path cannot be
    // had. Ends the process, after a report, when the user's application-data folder cannot be had.
    bool Initialize();

    BOOL m_bInitialized;
    WCHAR m_szFileName[MAX_PATH];          // the executable's name with extension
    WCHAR m_szFolderPath[MAX_PATH];        // its drive and directory, with the trailing backslash
    WCHAR m_szFullPath[MAX_PATH];          // its full path
    WCHAR m_szAppDataFolderPath[MAX_PATH]; // the working folder; nothing creates it here

private:
    void GetAppDataLocalFolderPath();
};
