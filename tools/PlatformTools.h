// Puts the Android platform tools, which the executable carries as a zip archive, on disk before
// the wizard starts and removes them after it ends.
#pragma once

#include "app/ground/Platform.h"

// The platform tools on disk. There is one object; its paths are set once and only read afterwards.
class CPlatformTools
{
public:
    // The one object, zero-filled on first use and never destroyed before the process ends.
    static CPlatformTools& GetInstance();

    // Sets the paths below the working folder (zero-terminated, less than MAX_PATH characters).
    // False when they are set already or one of them would be too long.
    bool Initialize(PCWSTR pszRootFolderPath);

    // Creates the folders, writes the archive and unpacks it; the archive stays until Uninstall.
    // False, without a message or after one, when a file cannot be written or unpacked. Ends the
    // process, after a report, when a folder cannot be created or the archive cannot be found; and
    // without a word when the working folder's path has no narrow form.
    bool Install();

    // Stops the adb server, then deletes the tools' folder and every archive, going on after a step
    // that fails. True when all three went well. Ends the process, after a report, when adb cannot be
    // started or the folder not be deleted.
    bool Uninstall();

    // Deletes the tools' folder with everything in it. False, without a message, when there is
    // none. Any other failure is reported and ends the process with exit code 13.
    bool DeleteFolder();

    BOOL m_bInitialized;
    WCHAR m_szAdbExePath[MAX_PATH];
    WCHAR m_szRootFolderPath[MAX_PATH]; // the working folder
    WCHAR m_szPlatformToolsFolderPath[MAX_PATH];
    WCHAR m_szZipFilePath[MAX_PATH];

private:
    struct ZIP_RESOURCE
    {
        const void* pData;
        DWORD cbData;
    };

    void CreateFolderPath();
    ZIP_RESOURCE LockZipFileResource();
    bool WriteZipFileResource(const ZIP_RESOURCE& zip);
    bool ExtractZipFile();
    bool DeleteZipFiles();
};
