#include "adb/AdbCommands.h"

#include "adb/AdbOutput.h"
#include "adb/ConsoleProcess.h"

namespace {

using CLASSIFIER = ADB_EXIT_CODE (*)(std::string_view);

ADB_EXIT_CODE RunAndClassify(CStringW szArguments, CLASSIFIER pfnClassify, std::string* pstrOutput)
{
    std::string strUnread;
    std::string& strOutput = pstrOutput != nullptr ? *pstrOutput : strUnread;
    const ADB_EXIT_CODE nRun = RunAdbCommand(strOutput, szArguments.GetBuffer());
    return nRun == ADB_SUCCESS ? pfnClassify(strOutput) : nRun;
}

} // namespace

ADB_EXIT_CODE KillServer(std::string* pstrOutput)
{
    return RunAndClassify(L" kill-server", ClassifyKillServerOutput, pstrOutput);
}

ADB_EXIT_CODE Pair(PCWSTR pszAddress, PCWSTR pszPairingCode, std::string* pstrOutput)
{
    CStringW szArguments;
    szArguments.Format(L" pair %s %s", pszAddress, pszPairingCode);
    return RunAndClassify(szArguments, ClassifyPairOutput, pstrOutput);
}

ADB_EXIT_CODE Connect(PCWSTR pszAddress, std::string* pstrOutput)
{
    CStringW szArguments;
    szArguments.Format(L" connect %s", pszAddress);
    return RunAndClassify(szArguments, ClassifyConnectOutput, pstrOutput);
}

ADB_EXIT_CODE Install(PCWSTR pszAddress, PCWSTR pszPackagePath, std::string* pstrOutput)
{
    CStringW szArguments;
    szArguments.Format(L" -s %s install \"%s\"", pszAddress, pszPackagePath);
    return RunAndClassify(szArguments, ClassifyInstallOutput, pstrOutput);
}
